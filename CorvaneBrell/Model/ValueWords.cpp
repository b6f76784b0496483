#include "CorvaneBrell/Model/ValueWords.h"

#include <fmt/format.h>

#include <algorithm>

#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

bool areStored(const std::vector<StoredValue>& values, const std::vector<PrefValue>& wanted) {
    return std::equal(values.begin(), values.end(), wanted.begin(), wanted.end());
}

std::string words(const StoredValue& value) {
    return value.isAbsent() ? "not set" : excerpt(value.rendered());
}

const Choice* choiceOf(const Tweak& tweak, const std::vector<StoredValue>& values) {
    const auto* kind = std::get_if<ChoiceKind>(&tweak.kind);
    if (!kind) return nullptr;
    const auto choice = std::find_if(kind->choices.begin(), kind->choices.end(),
                                     [&](const Choice& one) { return areStored(values, one.values); });
    return choice == kind->choices.end() ? nullptr : &*choice;
}

bool isSwitchedOff(const Tweak& tweak, const std::vector<StoredValue>& values) {
    return std::holds_alternative<ToggleKind>(tweak.kind) &&
           std::all_of(values.begin(), values.end(),
                       [](const StoredValue& value) { return value.value && value.value->as<bool>(); });
}

std::string relaunchWords(EffectClass effect) {
    switch (effect) {
        case EffectClass::immediate:
        case EffectClass::nextAppLaunch: return {};
        case EffectClass::finderRelaunch: return "Relaunches Finder";
        case EffectClass::dockRelaunch: return "Relaunches the Dock";
    }
    return {};
}

}  // namespace

std::string pathWords(std::string_view path, std::string_view home) {
    const bool isBelow =
        !home.empty() && path.starts_with(home) && (path.size() == home.size() || path[home.size()] == '/');
    return oneLine(isBelow ? "~" + std::string(path.substr(home.size())) : std::string(path));
}

std::string valueWords(const Tweak& tweak, const std::vector<StoredValue>& values, std::string_view home) {
    if (std::all_of(values.begin(), values.end(), [](const StoredValue& value) { return value.isAbsent(); }))
        return "not set";
    if (const Choice* choice = choiceOf(tweak, values)) return choice->title;
    if (std::holds_alternative<ToggleKind>(tweak.kind) && areStored(values, tweak.targets())) return "On";
    if (isSwitchedOff(tweak, values)) return "Off";
    if (std::holds_alternative<FolderKind>(tweak.kind))
        if (const auto* path = values.front().value ? values.front().value->as<std::string>() : nullptr)
            return pathWords(excerpt(*path), home);
    std::vector<std::string> parts;
    for (const StoredValue& value : values) parts.push_back(words(value));
    const std::string last = parts.back();
    parts.pop_back();
    return parts.empty() ? last : join(parts, ", ") + " and " + last;
}

std::string riskWords(Risk risk) {
    switch (risk) {
        case Risk::low: return {};
        case Risk::medium: return "Medium risk";
        case Risk::experimental: return "Experimental";
    }
    return {};
}

std::string noteWords(const Tweak& tweak) {
    const std::string risk = riskWords(tweak.risk), relaunch = relaunchWords(tweak.effect);
    return risk + (risk.empty() || relaunch.empty() ? "" : " · ") + relaunch;
}

}  // namespace brell
