#include "BrellCore/Catalog/CatalogTable.h"

namespace brell::CatalogTable {

std::vector<Row> animations() {
    return {
        {.id = "anim.no_window_animation",
         .title = "No window open and close animation",
         .writes = {write(globalDomain, "NSAutomaticWindowAnimationsEnabled", false, true)},
         .risk = Risk::experimental,
         .confirmedOn26 = true,
         .what = "Windows appear and disappear without the zoom animation.",
         .searchWords = "zoom popup effect motion reduce speed fast slow"},
        {.id = "anim.fast_sheets",
         .title = "Faster sheets and dialogs",
         .writes = {write(globalDomain, "NSWindowResizeTime", 0.001)},
         .confirmedOn26 = true,
         .what = "Sheets (the panels that slide down from a window's title bar) and resizing windows animate "
                 "almost instantly.",
         .searchWords = "speed slow quick save panel resize window motion reduce delay animation"},
    };
}

std::vector<Row> keyboardText() {
    return {
        {.id = "kb.hold_to_repeat",
         .title = "Hold a key to repeat it",
         .writes = {write(globalDomain, "ApplePressAndHoldEnabled", false, true)},
         .risk = Risk::medium,
         .confirmedOn26 = true,
         .what = "Holding a key repeats the character instead of showing the accent popup.",
         .riskNote = "You lose the popup for accented letters (é, ñ); the Option-key shortcuts still work.",
         .searchWords = "key repeat accents accent popup vim long press hold umlaut typing"},
        {.id = "text.no_autocorrect",
         .title = "No automatic spelling correction",
         .writes = {write(globalDomain, "NSAutomaticSpellingCorrectionEnabled", false, true)},
         .what = "macOS stops replacing words it thinks are misspelled.",
         .searchWords = "spellcheck spell checker autocorrect typo replace words typing"},
        {.id = "text.no_autocapitalize",
         .title = "No automatic capitalization",
         .writes = {write(globalDomain, "NSAutomaticCapitalizationEnabled", false, true)},
         .confirmedOn26 = true,
         .what = "The first letter of a sentence is not capitalized for you.",
         .searchWords = "uppercase capitals capital letter sentence shift typing"},
        {.id = "text.no_smart_quotes",
         .title = "No smart quotes",
         .writes = {write(globalDomain, "NSAutomaticQuoteSubstitutionEnabled", false, true)},
         .confirmedOn26 = true,
         .what = "Straight quotes (\" and ') stay straight instead of becoming curly ones. Useful for code.",
         .searchWords = "curly straight typographic quotation marks apostrophe code typing"},
        {.id = "text.no_smart_dashes",
         .title = "No smart dashes",
         .writes = {write(globalDomain, "NSAutomaticDashSubstitutionEnabled", false, true)},
         .what = "Two hyphens stay two hyphens instead of becoming a dash.",
         .searchWords = "hyphen em en dash double minus code typing"},
        {.id = "text.no_double_space_period",
         .title = "No period on double space",
         .writes = {write(globalDomain, "NSAutomaticPeriodSubstitutionEnabled", false, true)},
         .what = "Pressing the space bar twice no longer inserts a period.",
         .searchWords = "full stop dot spacebar twice typing"},
        {.id = "text.no_inline_prediction",
         .title = "No inline text prediction",
         .writes = {write(globalDomain, "NSAutomaticInlinePredictionEnabled", false, true)},
         .confirmedOn26 = true,
         .what = "The grey predicted text that appears as you type is turned off.",
         .searchWords = "autocomplete suggestions ghost predictive grey gray typing"},
    };
}

std::vector<Row> panelsDocuments() {
    return {
        {.id = "panels.expanded_save",
         .title = "Save panels open expanded",
         .writes = {write(globalDomain, "NSNavPanelExpandedStateForSaveMode", true, false),
                    write(globalDomain, "NSNavPanelExpandedStateForSaveMode2", true, false)},
         .confirmedOn26 = true,
         .what = "The Save dialog opens with the full folder browser instead of the small version.",
         .searchWords = "dialog window full bigger larger browser save as"},
        {.id = "panels.expanded_print",
         .title = "Print panels open expanded",
         .writes = {write(globalDomain, "PMPrintingExpandedStateForPrint", true, false),
                    write(globalDomain, "PMPrintingExpandedStateForPrint2", true, false)},
         .confirmedOn26 = true,
         .what = "The Print dialog opens with all its options showing.",
         .searchWords = "printer printing dialog options details bigger larger paper"},
        {.id = "docs.save_to_disk",
         .title = "Save new documents to this Mac, not iCloud",
         .writes = {write(globalDomain, "NSDocumentSaveNewDocumentsToCloud", false, true)},
         .confirmedOn26 = true,
         .what =
             "The Save dialog of apps like TextEdit and Preview starts on this Mac instead of iCloud Drive.",
         .searchWords = "icloud cloud drive local default location textedit preview"},
    };
}

}  // namespace brell::CatalogTable
