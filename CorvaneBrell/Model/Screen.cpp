#include "CorvaneBrell/Model/Screen.h"

#include <algorithm>

namespace brell {

namespace {

struct Facts {
    std::string_view symbol;
    std::optional<TweakGroup> group;
    std::string_view purpose;
    std::string_view searchWords;
};

constexpr std::array<Facts, enumTexts<Screen>.size()> screenFacts{{
    {"folder", TweakGroup::finder, "What Finder shows and where it opens.", "files folders desktop windows"},
    {"dock.rectangle", TweakGroup::dock, "How the Dock looks and when it comes and goes.",
     "icons taskbar launcher bottom bar"},
    {"rectangle.3.group", TweakGroup::missionControl, "How spaces and windows are arranged.",
     "spaces desktops expose windows"},
    {"sparkles", TweakGroup::animations, "How much windows move, and how fast.", "motion effects speed slow"},
    {"keyboard", TweakGroup::keyboardText, "What macOS changes while you type.",
     "typing text autocorrect spelling"},
    {"doc.text", TweakGroup::panelsDocuments, "How Save and Print panels open, and where documents go.",
     "save print dialog open"},
    {"camera.viewfinder", TweakGroup::screenshots, "Where screenshots are saved and what is in them.",
     "screen capture grab picture"},
    {"ellipsis.circle", TweakGroup::misc, "Small settings that belong to no other page.",
     "other miscellaneous more"},
    {"power", std::nullopt, "Everything that starts by itself when you log in.",
     "startup boot autostart launch agents daemons background processes start services helpers"},
    {"hand.raised", TweakGroup::privacy, "What apps may see, to be reviewed one card at a time.",
     "permissions camera microphone location tracking access security"},
    {"magnifyingglass", TweakGroup::spotlight, "Which volumes Spotlight indexes.",
     "search index indexing volumes disk"},
    {"clock.arrow.circlepath", std::nullopt, "Every change Brell made, and the way back.",
     "history undo restore changes log revert report script"},
}};

const Facts& facts(Screen screen) {
    return screenFacts[static_cast<std::size_t>(screen)];
}

}  // namespace

std::string_view symbol(Screen screen) {
    return facts(screen).symbol;
}

std::optional<TweakGroup> group(Screen screen) {
    return facts(screen).group;
}

Screen screenOf(TweakGroup group) {
    const auto found = std::find_if(screenFacts.begin(), screenFacts.end(),
                                    [group](const Facts& facts) { return facts.group == group; });
    return static_cast<Screen>(found - screenFacts.begin());
}

std::string_view title(Screen screen) {
    if (const auto shown = group(screen)) return title(*shown);
    return screen == Screen::loginItems ? "Login items" : "Journal";
}

std::string_view purpose(Screen screen) {
    return facts(screen).purpose;
}

std::string_view searchWords(Screen screen) {
    return facts(screen).searchWords;
}

std::optional<std::string_view> settingsLink(Screen screen) {
    if (screen == Screen::loginItems)
        return "x-apple.systempreferences:com.apple.LoginItems-Settings.extension";
    if (screen == Screen::spotlight)
        return "x-apple.systempreferences:com.apple.Spotlight-Settings.extension";
    return std::nullopt;
}

}  // namespace brell
