// A tweak: one visible change of hidden preferences, with everything that is said about it.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "BrellCore/Preferences/PrefKey.h"
#include "BrellCore/Preferences/PrefValue.h"
#include "BrellCore/Support/EnumText.h"

namespace brell {

enum class TweakGroup {
    finder,
    dock,
    missionControl,
    animations,
    keyboardText,
    panelsDocuments,
    screenshots,
    misc,
    privacy,
    spotlight
};
template <>
inline constexpr std::array<std::string_view, 10> enumTexts<TweakGroup>{
    "finder",          "dock",        "missionControl", "animations", "keyboardText",
    "panelsDocuments", "screenshots", "misc",           "privacy",    "spotlight"};
std::string_view title(TweakGroup group);

// When a change shows.
enum class EffectClass { immediate, nextAppLaunch, finderRelaunch, dockRelaunch };
template <>
inline constexpr std::array<std::string_view, 4> enumTexts<EffectClass>{"immediate", "nextAppLaunch",
                                                                        "finderRelaunch", "dockRelaunch"};
std::string_view label(EffectClass effect);

// experimental: no visible effect is confirmed on every macOS version; never part of a preset.
enum class Risk { low, medium, experimental };
template <>
inline constexpr std::array<std::string_view, 3> enumTexts<Risk>{"low", "medium", "experimental"};
std::string_view label(Risk risk);

// One named set of values; values has one for each write of the tweak, in the order of the writes.
struct Choice {
    std::string id;  // unique within the tweak
    std::string title;
    std::vector<PrefValue> values;
    bool operator==(const Choice&) const = default;
};

struct ChoiceKind {  // one of several named values
    std::vector<Choice> choices;
    bool operator==(const ChoiceKind&) const = default;
};
struct ToggleKind {  // a switch: on means that every write holds its target
    bool operator==(const ToggleKind&) const = default;
};
struct FolderKind {  // the user picks a folder; its path is written in place of the target
    bool operator==(const FolderKind&) const = default;
};
using TweakKind = std::variant<ChoiceKind, ToggleKind, FolderKind>;

struct Write {
    PrefKey key;
    PrefValue target;                        // what turns the tweak on
    std::optional<PrefValue> systemDefault;  // macOS's own value when the key is absent, if known

    std::string rendered() const { return key.rendered() + " = " + target.rendered(); }
    bool operator==(const Write&) const = default;
};

// The texts shown with a tweak.
struct Explanation {
    std::string what;
    std::string value;
    std::string takesEffect;
    std::string risk;
    std::string undo;
    bool operator==(const Explanation&) const = default;
};

struct Tweak {
    std::string id;  // "finder.show_hidden"; stable, it stands in journals and preset files
    TweakGroup group;
    std::string title;
    std::vector<Write> writes;  // at least one
    TweakKind kind;
    EffectClass effect;
    Risk risk;
    Explanation explanation;
    std::optional<std::set<int>> availableMajors;  // macOS major versions; nothing means every one
    std::set<int> confirmedOn;                     // majors on which the effect was seen
    std::string searchWords;                       // what people call it who do not know its title

    std::set<std::string> domains() const;
    std::vector<PrefValue> targets() const;
    std::string renderedWrites() const;  // joined with "; "
    bool isAvailable(int major) const { return !availableMajors || availableMajors->contains(major); }
    bool isConfirmed(int major) const { return confirmedOn.contains(major); }
    bool operator==(const Tweak&) const = default;
};

// The explanation that follows from a tweak's data; riskNote is empty when there is none.
Explanation explain(const std::vector<Write>& writes, const TweakKind& kind, EffectClass effect, Risk risk,
                    std::string what, std::string_view riskNote);

}  // namespace brell
