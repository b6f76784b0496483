// The pages of the window, in the order of the sidebar.
#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "BrellCore/Catalog/Tweak.h"
#include "BrellCore/Support/EnumText.h"

namespace brell {

enum class Screen {
    finder,
    dock,
    missionControl,
    animations,
    keyboardText,
    panelsDocuments,
    screenshots,
    misc,
    loginItems,
    privacy,
    spotlight,
    journal
};
template <>
inline constexpr std::array<std::string_view, 12> enumTexts<Screen>{
    "finder",      "dock", "missionControl", "animations", "keyboardText", "panelsDocuments",
    "screenshots", "misc", "loginItems",     "privacy",    "spotlight",    "journal"};

std::string_view symbol(Screen screen);  // the system's name of it
std::optional<TweakGroup> group(Screen screen);
Screen screenOf(TweakGroup group);
std::string_view title(Screen screen);
std::string_view purpose(Screen screen);      // one sentence under the title
std::string_view searchWords(Screen screen);  // what people call it who do not know its title
// The link that opens the page's pane of System Settings; privacy cards bring their own.
std::optional<std::string_view> settingsLink(Screen screen);

}  // namespace brell
