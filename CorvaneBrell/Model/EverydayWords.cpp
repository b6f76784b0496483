#include <algorithm>

#include "CorvaneBrell/Model/TweakSearch.h"

namespace brell {

namespace {

struct Entry {
    std::string_view tweakID;
    std::string_view words;
};

constexpr std::array<Entry, 50> tweakWords{{
    {"finder.show_hidden", "dotfiles dot files invisible secret library unhide reveal"},
    {"finder.show_extensions", "suffix file type ending jpg pdf txt name"},
    {"finder.path_bar", "breadcrumb location folder where"},
    {"finder.status_bar", "free disk space available item count storage"},
    {"finder.posix_title", "unix directory address location"},
    {"finder.folders_first", "order directories top group windows explorer"},
    {"finder.search_current_folder", "this mac scope find in folder"},
    {"finder.new_window_home", "recents start default location user directory"},
    {"finder.view_style", "layout list columns gallery icon"},
    {"finder.drives_on_desktop", "disk usb external hard drive icon volume stick card"},
    {"finder.no_extension_warning", "rename dialog alert ask confirm suffix annoying"},
    {"finder.no_empty_trash_warning", "delete bin dialog alert ask confirm annoying"},
    {"finder.quit_menu", "close exit command q hide desktop icons"},
    {"finder.no_dsstore_on_shares",
     "dsstore ds_store junk metadata smb nas server usb stick windows dotfiles"},
    {"dock.autohide", "disappear vanish hidden hide slide away bottom bar"},
    {"dock.autohide_instant", "delay lag slow speed fast faster quick animation pause"},
    {"dock.no_recents", "recently used suggested applications clutter"},
    {"dock.minimize_effect", "genie scale animation suck minimise"},
    {"dock.minimize_into_app", "minimise clutter right side windows shrink"},
    {"dock.no_bounce", "jump jumping hop animation launch start opening"},
    {"dock.size", "bigger smaller big small large tile scale width"},
    {"dock.magnify", "zoom grow enlarge bigger hover magnification"},
    {"dock.position", "left right side bottom edge move location vertical screen"},
    {"dock.running_only", "open active applications pinned only minimal unpin"},
    {"dock.translucent_hidden", "transparent faded dim see through hide"},
    {"mc.keep_space_order", "desktops rearrange reorder automatically shuffle virtual recent"},
    {"mc.group_by_app", "expose stack together windows desktops"},
    {"mc.fast_animation", "speed slow quick expose swipe delay desktops"},
    {"anim.no_window_animation", "zoom popup effect motion reduce speed fast slow"},
    {"anim.fast_sheets", "speed slow quick save panel resize window motion reduce delay animation"},
    {"kb.hold_to_repeat", "key repeat accents accent popup vim long press hold umlaut typing"},
    {"text.no_autocorrect", "spellcheck spell checker autocorrect typo replace words typing"},
    {"text.no_autocapitalize", "uppercase capitals capital letter sentence shift typing"},
    {"text.no_smart_quotes", "curly straight typographic quotation marks apostrophe code typing"},
    {"text.no_smart_dashes", "hyphen em en dash double minus code typing"},
    {"text.no_double_space_period", "full stop dot spacebar twice typing"},
    {"text.no_inline_prediction", "autocomplete suggestions ghost predictive grey gray typing"},
    {"panels.expanded_save", "dialog window full bigger larger browser save as"},
    {"panels.expanded_print", "printer printing dialog options details bigger larger paper"},
    {"docs.save_to_disk", "icloud cloud drive local default location textedit preview"},
    {"shot.folder", "screenshot location directory desktop clutter path screen capture grab"},
    {"shot.jpg", "screenshot format png jpg jpeg file type smaller size screen capture grab"},
    {"shot.no_shadow", "screenshot border margin drop shadow screen capture grab"},
    {"shot.no_thumbnail", "screenshot preview corner popup delay screen capture grab"},
    {"shot.date_in_name", "screenshot timestamp filename naming screen capture grab"},
    {"shot.cursor", "screenshot mouse arrow show screen capture grab"},
    {"misc.no_crash_dialog", "report quit unexpectedly problem error message alert"},
    {"misc.no_timemachine_offer", "backup back up external disk drive usb ask prompt stick"},
    {"misc.always_show_scrollbars", "scrollbar scrolling disappear hidden visible slider"},
    {"priv.no_personalized_ads", "advertising advertisement tracking targeted personalised app store"},
}};

// In the order of the screens.
constexpr std::array<std::string_view, enumTexts<Screen>.size()> screenWords{
    "files folders desktop windows",
    "icons taskbar launcher bottom bar",
    "spaces desktops expose windows",
    "motion effects speed slow",
    "typing text autocorrect spelling",
    "save print dialog open",
    "screen capture grab picture",
    "other miscellaneous more",
    "startup boot autostart launch agents daemons background processes start services helpers",
    "permissions camera microphone location tracking access security",
    "search index indexing volumes disk",
    "history undo restore changes log revert report script"};

}  // namespace

std::string_view everydayWords(std::string_view tweakID) {
    const auto found = std::find_if(tweakWords.begin(), tweakWords.end(),
                                    [&](const Entry& entry) { return entry.tweakID == tweakID; });
    return found == tweakWords.end() ? std::string_view() : found->words;
}

std::string_view everydayWords(Screen screen) {
    return screenWords[static_cast<std::size_t>(screen)];
}

}  // namespace brell
