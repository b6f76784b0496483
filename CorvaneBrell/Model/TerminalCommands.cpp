#include "CorvaneBrell/Model/TerminalCommands.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "BrellCore/Journal/AgentCommands.h"
#include "BrellCore/Journal/RestoreScript.h"
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

void append(Lines& lines, Lines more) {
    for (std::string& line : more) lines.push_back(std::move(line));
}

Lines making(const JournalEntry& entry) {
    if (entry.agent) return linesOf(AgentCommands::making(*entry.agent), *entry.agent);
    Lines lines;
    for (const JournaledWrite& write : entry.writes) lines.push_back(putting(write.key, write.written));
    return lines;
}

void addEffect(std::set<EffectClass>& effects, const JournalEntry& entry, const TweakCatalog& catalog) {
    if (const Tweak* tweak = catalog.tweak(entry.tweakID)) effects.insert(tweak->effect);
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
    for (const JournalEntry& entry : entries) {
        if (!entry.isActive()) continue;
        append(lines, making(entry));
        addEffect(effects, entry, catalog);
    }
    return withHint(std::move(lines), effects);
}

std::string commandsUndoing(const JournalEntry& entry, const TweakCatalog& catalog) {
    Lines lines = entry.agent ? linesOf(AgentCommands::undoing(*entry.agent), *entry.agent) : Lines();
    for (const JournaledWrite& write : entry.writes) lines.push_back(putting(write.key, write.original));
    std::set<EffectClass> effects;
    addEffect(effects, entry, catalog);
    return withHint(std::move(lines), effects);
}

}  // namespace brell
