#include "BrellCore/Catalog/CatalogTable.h"

namespace brell::CatalogTable {

std::vector<Row> dock() {
    return {
        {.id = "dock.autohide",
         .title = "Hide the Dock automatically",
         .writes = {write(Domains::dock, "autohide", true, false)},
         .what = "The Dock slides away and comes back when the pointer reaches the screen edge."},
        {.id = "dock.autohide_instant",
         .title = "Show the hidden Dock instantly",
         .writes = {write(Domains::dock, "autohide-delay", 0.0),
                    write(Domains::dock, "autohide-time-modifier", 0.2)},
         .what = "No pause before the hidden Dock appears, and a faster slide. Only matters when the Dock "
                 "hides automatically."},
        {.id = "dock.no_recents",
         .title = "No recent apps in the Dock",
         .writes = {write(Domains::dock, "show-recents", false, true)},
         .what = "The section of recently used apps at the end of the Dock is removed."},
        {.id = "dock.minimize_effect",
         .title = "Minimize effect",
         .writes = {write(Domains::dock, "mineffect", "scale", "genie")},
         .kind = ChoiceKind{{{"scale", "Scale (faster)", {"scale"}},
                             {"genie", "Genie (the default)", {"genie"}}}},
         .what = "The animation used when a window is minimized."},
        {.id = "dock.minimize_into_app",
         .title = "Minimize windows into their app icon",
         .writes = {write(Domains::dock, "minimize-to-application", true, false)},
         .what = "Minimized windows go into the app's icon instead of taking a slot at the end of the Dock."},
        {.id = "dock.no_bounce",
         .title = "No bouncing when apps open",
         .writes = {write(Domains::dock, "launchanim", false, true)},
         .what = "App icons no longer bounce while the app is starting."},
        {.id = "dock.size",
         .title = "Icon size",
         .writes = {write(Domains::dock, "tilesize", 48)},
         .kind = ChoiceKind{{{"small", "Small", {36}}, {"medium", "Medium", {48}}, {"large", "Large", {64}}}},
         .what = "How big the Dock icons are."},
        {.id = "dock.magnify",
         .title = "Magnify icons under the pointer",
         .writes = {write(Domains::dock, "magnification", true, false),
                    write(Domains::dock, "largesize", 80)},
         .what = "Icons grow as the pointer passes over them."},
        {.id = "dock.position",
         .title = "Position",
         .writes = {write(Domains::dock, "orientation", "bottom", "bottom")},
         .kind = ChoiceKind{{{"left", "Left", {"left"}},
                             {"bottom", "Bottom (the default)", {"bottom"}},
                             {"right", "Right", {"right"}}}},
         .what = "Which screen edge the Dock sits on."},
        {.id = "dock.running_only",
         .title = "Show only running apps",
         .writes = {write(Domains::dock, "static-only", true, false)},
         .risk = Risk::medium,
         .what = "The Dock shows only apps that are open.",
         .riskNote =
             "Your pinned apps disappear from the Dock until you turn this off; they are not removed."},
        {.id = "dock.translucent_hidden",
         .title = "Translucent icons for hidden apps",
         .writes = {write(Domains::dock, "showhidden", true, false)},
         .what = "An app you hid with ⌘H shows a translucent icon, so you can tell it is hidden."},
    };
}

std::vector<Row> missionControl() {
    return {
        {.id = "mc.keep_space_order",
         .title = "Keep Spaces in the order you set",
         .writes = {write(Domains::dock, "mru-spaces", false, true)},
         .what = "Mission Control stops rearranging desktops by most recent use."},
        {.id = "mc.group_by_app",
         .title = "Group windows by app in Mission Control",
         .writes = {write(Domains::dock, "expose-group-apps", true, false)},
         .what = "Windows of the same app are stacked together in Mission Control."},
        {.id = "mc.fast_animation",
         .title = "Faster Mission Control animation",
         .writes = {write(Domains::dock, "expose-animation-duration", 0.1)},
         .risk = Risk::experimental,
         .what = "Mission Control opens and closes with a shorter animation."},
    };
}

}  // namespace brell::CatalogTable
