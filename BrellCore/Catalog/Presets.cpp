#include "BrellCore/Catalog/Presets.h"

namespace brell::Presets {

const std::vector<Preset>& shipped() {
    static const std::vector<Preset> presets{
        {.id = "quiet-dock",
         .name = "Quiet Dock",
         .summary = "A calmer Dock: no recents, no launch bounce, fast hide, minimize into the app.",
         .tweakIDs = {"dock.autohide", "dock.autohide_instant", "dock.no_recents", "dock.no_bounce",
                      "dock.minimize_into_app"}},
        {.id = "developer-finder",
         .name = "Developer Finder",
         .summary = "Finder for working with files: hidden files, extensions, path bar, status bar, full "
                    "path in the title, folders first.",
         .tweakIDs = {"finder.show_hidden", "finder.show_extensions", "finder.path_bar", "finder.status_bar",
                      "finder.posix_title", "finder.folders_first", "finder.search_current_folder",
                      "finder.no_dsstore_on_shares", "text.no_smart_quotes", "text.no_smart_dashes"}},
        {.id = "fewer-animations",
         .name = "Fewer animations",
         .summary = "Less motion in windows, sheets and the Dock.",
         .tweakIDs = {"dock.autohide_instant", "dock.no_bounce", "dock.minimize_effect", "anim.fast_sheets"}},
        {.id = "calm-typing",
         .name = "Calm typing",
         .summary = "No automatic correction, capitalisation, smart quotes, dashes, double-space period or "
                    "inline prediction; hold a key to repeat it.",
         .tweakIDs = {"text.no_autocorrect", "text.no_autocapitalize", "text.no_smart_quotes",
                      "text.no_smart_dashes", "text.no_double_space_period", "text.no_inline_prediction",
                      "kb.hold_to_repeat"}}};
    return presets;
}

PresetValidation validate(const Preset& preset, const TweakCatalog& catalog) {
    PresetValidation validation;
    for (const std::string& id : preset.tweakIDs) {
        const Tweak* tweak = catalog.tweak(id);
        if (!tweak)
            validation.unknown.push_back(id);
        else if (tweak->risk == Risk::experimental)
            validation.experimental.push_back(id);
        else
            validation.valid.push_back(id);
    }
    return validation;
}

}  // namespace brell::Presets
