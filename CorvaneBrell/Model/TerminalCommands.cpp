#include "CorvaneBrell/Model/TerminalCommands.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "BrellCore/Journal/AgentCommands.h"
#include "BrellCore/Journal/RestoreScript.h"
#include "BrellCore/Preferences/NeverTouch.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

using Lines = std::vector<std::string>;

bool isControl(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

bool isPlain(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' ||
           c == '_' || c == '-' || c == '/';
}

// A control character that is pasted acts as the key would: quotes do not hold an interrupt.
std::string escaped(std::string_view text) {
    std::string word = "$'";
    for (const char c : text)
        if (isControl(c) || c == '\'' || c == '\\')
            word += fmt::format("\\{:03o}", static_cast<unsigned char>(c));
        else
            word += c;
    return word + "'";
}

std::string word(std::string_view text) {
    if (!text.empty() && std::all_of(text.begin(), text.end(), isPlain)) return std::string(text);
    if (std::any_of(text.begin(), text.end(), isControl)) return escaped(text);
    return RestoreScript::quote(text);
}

std::string arguments(const PrefValue& value) {
    if (const auto* text = value.as<std::string>()) return " " + word(*text);
    const auto* strings = value.as<PrefValue::StringArray>();
    if (!strings) return " " + RestoreScript::valueArgs(value);
    std::string words;
    for (const std::string& element : *strings) words += " " + word(element);
    return words;
}

std::string putting(const PrefKey& key, const StoredValue& stored) {
    const std::string place = (key.domain == globalDomain ? "-g" : word(key.domain)) + " " + word(key.name);
    if (!stored.value) return "defaults delete " + place;
    return "defaults write " + place + " " + std::string(stored.value->defaultsFlag()) +
           arguments(*stored.value);
}

// Without their conditions: a command whose condition does not hold makes no difference in the end.
Lines linesOf(const AgentPlan& plan, const AgentCapture& agent) {
    Lines lines;
    for (const AgentCommand& command : plan.commands)
        lines.push_back(AgentCommands::shellLine(command.verb, agent, word));
    return lines;
}

bool looksLikeAFlag(const std::string& text) {
    return text.starts_with('-');
}

// In a list, where a type may stand before each element, and where a key is expected. A text after its type
// is taken as it is.
bool hasFlag(const JournaledWrite& write) {
    const auto* strings = write.written.value ? write.written.value->as<PrefValue::StringArray>() : nullptr;
    return looksLikeAFlag(write.key.name) ||
           (strings && std::any_of(strings->begin(), strings->end(), looksLikeAFlag));
}

// A journal may be another program's.
bool isFitForTerminal(const JournalEntry& entry) {
    if (entry.agent)
        return AgentCommands::isPlainLabel(entry.agent->label) &&
               !NeverTouch::isForbiddenLabel(entry.agent->label) && entry.agent->plistPath.starts_with('/');
    return std::none_of(entry.writes.begin(), entry.writes.end(), [](const JournaledWrite& write) {
        return !TweakCatalog::allowedDomains().contains(write.key.domain) || write.key.name.empty() ||
               hasFlag(write);
    });
}

Lines making(const JournalEntry& entry) {
    if (entry.agent) return linesOf(AgentCommands::making(*entry.agent), *entry.agent);
    Lines lines;
    for (const JournaledWrite& write : entry.writes) lines.push_back(putting(write.key, write.written));
    return lines;
}

std::string withHint(Lines lines, const std::set<EffectClass>& effects) {
    if (lines.empty()) return {};
    Lines apps;
    if (effects.contains(EffectClass::finderRelaunch)) apps.push_back("Finder");
    if (effects.contains(EffectClass::dockRelaunch)) apps.push_back("the Dock");
    if (effects.contains(EffectClass::nextAppLaunch)) apps.push_back("the apps that are open");
    if (!apps.empty())
        lines.push_back("echo 'Relaunch " + join(apps, " and ") +
                        ", or log out and back in, for every change to take effect.'");
    return join(lines, "\n") + "\n";
}

}  // namespace

std::string commandsMaking(const Tweak& tweak, const std::optional<std::vector<PrefValue>>& values) {
    const std::vector<PrefValue> chosen = values ? *values : tweak.targets();
    Lines lines;
    for (std::size_t i = 0; i < tweak.writes.size(); ++i)
        lines.push_back(putting(tweak.writes[i].key, chosen.at(i)));
    return withHint(std::move(lines), {tweak.effect});
}

std::string commandsMaking(const std::vector<JournalEntry>& entries, const TweakCatalog& catalog) {
    Lines lines;
    std::set<EffectClass> effects;
    std::size_t leftOut = 0;
    for (const JournalEntry& entry : entries) {
        if (!entry.isActive()) continue;
        if (!isFitForTerminal(entry)) {
            ++leftOut;
            continue;
        }
        for (std::string& line : making(entry)) lines.push_back(std::move(line));
        if (const Tweak* tweak = catalog.tweak(entry.tweakID)) effects.insert(tweak->effect);
    }
    if (leftOut > 0)
        lines.push_back(fmt::format("echo 'Left out: {} that cannot be made by pasted commands.'",
                                    counted(leftOut, "change", "changes")));
    return withHint(std::move(lines), effects);
}

}  // namespace brell
