#include "BrellCore/Catalog/CatalogTable.h"

namespace brell::CatalogTable {

std::vector<Row> animations() {
    return {
        {.id = "anim.no_window_animation",
         .title = "No window open and close animation",
         .writes = {write(globalDomain, "NSAutomaticWindowAnimationsEnabled", false, true)},
         .risk = Risk::experimental,
         .what = "Windows appear and disappear without the zoom animation."},
        {.id = "anim.fast_sheets",
         .title = "Faster sheets and dialogs",
         .writes = {write(globalDomain, "NSWindowResizeTime", 0.001)},
         .what = "Sheets (the panels that slide down from a window's title bar) and resizing windows animate "
                 "almost instantly."},
    };
}

std::vector<Row> keyboardText() {
    return {
        {.id = "kb.hold_to_repeat",
         .title = "Hold a key to repeat it",
         .writes = {write(globalDomain, "ApplePressAndHoldEnabled", false, true)},
         .risk = Risk::medium,
         .what = "Holding a key repeats the character instead of showing the accent popup.",
         .riskNote = "You lose the popup for accented letters (é, ñ); the Option-key shortcuts still work."},
        {.id = "text.no_autocorrect",
         .title = "No automatic spelling correction",
         .writes = {write(globalDomain, "NSAutomaticSpellingCorrectionEnabled", false, true)},
         .confirmedOn26 = false,
         .what = "macOS stops replacing words it thinks are misspelled."},
        {.id = "text.no_autocapitalize",
         .title = "No automatic capitalization",
         .writes = {write(globalDomain, "NSAutomaticCapitalizationEnabled", false, true)},
         .what = "The first letter of a sentence is not capitalized for you."},
        {.id = "text.no_smart_quotes",
         .title = "No smart quotes",
         .writes = {write(globalDomain, "NSAutomaticQuoteSubstitutionEnabled", false, true)},
         .what = "Straight quotes (\" and ') stay straight instead of becoming curly ones. Useful for code."},
        {.id = "text.no_smart_dashes",
         .title = "No smart dashes",
         .writes = {write(globalDomain, "NSAutomaticDashSubstitutionEnabled", false, true)},
         .confirmedOn26 = false,
         .what = "Two hyphens stay two hyphens instead of becoming a dash."},
        {.id = "text.no_double_space_period",
         .title = "No period on double space",
         .writes = {write(globalDomain, "NSAutomaticPeriodSubstitutionEnabled", false, true)},
         .confirmedOn26 = false,
         .what = "Pressing the space bar twice no longer inserts a period."},
        {.id = "text.no_inline_prediction",
         .title = "No inline text prediction",
         .writes = {write(globalDomain, "NSAutomaticInlinePredictionEnabled", false, true)},
         .what = "The grey predicted text that appears as you type is turned off."},
    };
}

std::vector<Row> panelsDocuments() {
    return {
        {.id = "panels.expanded_save",
         .title = "Save panels open expanded",
         .writes = {write(globalDomain, "NSNavPanelExpandedStateForSaveMode", true, false),
                    write(globalDomain, "NSNavPanelExpandedStateForSaveMode2", true, false)},
         .what = "The Save dialog opens with the full folder browser instead of the small version."},
        {.id = "panels.expanded_print",
         .title = "Print panels open expanded",
         .writes = {write(globalDomain, "PMPrintingExpandedStateForPrint", true, false),
                    write(globalDomain, "PMPrintingExpandedStateForPrint2", true, false)},
         .what = "The Print dialog opens with all its options showing."},
        {.id = "docs.save_to_disk",
         .title = "Save new documents to this Mac, not iCloud",
         .writes = {write(globalDomain, "NSDocumentSaveNewDocumentsToCloud", false, true)},
         .what =
             "The Save dialog of apps like TextEdit and Preview starts on this Mac instead of iCloud Drive."},
    };
}

}  // namespace brell::CatalogTable
