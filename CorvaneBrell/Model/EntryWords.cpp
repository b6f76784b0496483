#include "CorvaneBrell/Model/EntryWords.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <map>

#include "BrellCore/Background/AgentSteps.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

std::string words(const StoredValue& value) {
    return excerpt(value.rendered());
}

// A journal may name any key.
std::string words(const PrefKey& key) {
    return excerpt(key.rendered());
}

std::string position(const AgentCapture& agent) {
    if (agent.turnedOn()) return agent.wasLoaded ? "off, but still loaded" : "off";
    return agent.wasLoaded ? "on" : "on, but not loaded";
}

std::string driftLine(const KeyReading& key) {
    return fmt::format("{}: now {}; Brell wrote {}; original {}", words(key.write.key),
                       key.now ? words(*key.now) : "unreadable", words(key.write.written),
                       words(key.write.original));
}

std::string difference(const KeyReading& key) {
    return fmt::format("{} {}; it was {}.", words(key.write.key),
                       key.now ? "is " + words(*key.now) : "cannot be read", words(key.write.original));
}

std::vector<std::string> proofSentences(const KeyReadings& keys) {
    if (keys.empty()) return {};
    const auto asBefore = std::count_if(keys.begin(), keys.end(), std::mem_fn(&KeyReading::isAsBefore));
    std::vector<std::string> sentences{
        keys.size() == 1 ? fmt::format("{} of 1 key is exactly as before.", asBefore)
                         : fmt::format("{} of {} keys are exactly as before.", asBefore, keys.size())};
    for (const KeyReading& key : keys)
        if (!key.isAsBefore()) sentences.push_back(difference(key));
    return sentences;
}

struct AgentPosition {
    AgentOverride override;
    bool isLoaded;
    bool operator==(const AgentPosition&) const = default;

    std::string rendered() const {
        return fmt::format("override {}, {}", rawValue(override), isLoaded ? "loaded" : "not loaded");
    }
};

// A completed switch leaves the opposite of a recorded disabling, or a disabling.
AgentPosition leftBy(const AgentCapture& before) {
    if (before.turnedOn()) return {AgentOverride::enabled, true};
    return {AgentOverride::disabled, false};
}

// An interrupted change is followed by nothing, or by the restore that ended it.
bool isInterruption(const HistoryLine& begun, const HistoryLine* next) {
    return begun.event == EntryStatus::capturing && (!next || next->event == EntryStatus::restored);
}

std::string eventWords(const HistoryLine& line) {
    const auto failure = failureWords(line.entry);
    const std::string reason = failure ? ": " + *failure : "";
    switch (line.event) {
        case EntryStatus::capturing: return "Interrupted" + reason;
        case EntryStatus::applied: return "Applied";
        case EntryStatus::failed: return "Failed" + (reason.empty() ? ": no reason was recorded." : reason);
        case EntryStatus::restored: break;
    }
    return "Restored" + reason;
}

}  // namespace

std::vector<std::string> changeLines(const JournalEntry& entry) {
    if (entry.agent)
        return {std::string(entry.agent->turnedOn() ? "Turned on" : "Turned off") + "; back to " +
                position(*entry.agent)};
    std::vector<std::string> lines;
    for (const JournaledWrite& write : entry.writes)
        lines.push_back(words(write.key) + ": " + words(write.written) + "; back to " +
                        words(write.original));
    return lines;
}

std::vector<std::string> putBackLines(const JournalEntry& entry) {
    std::vector<std::string> lines;
    for (const JournaledWrite& write : entry.writes)
        lines.push_back(words(write.key) + ": back to " + words(write.original));
    return lines;
}

std::vector<std::string> againLines(const JournalEntry& entry) {
    std::vector<std::string> lines;
    for (const JournaledWrite& write : entry.writes)
        lines.push_back(words(write.key) + ": again " + words(write.written));
    return lines;
}

std::string wayBack(const JournalEntry& entry) {
    if (entry.agent) return position(*entry.agent);
    if (entry.writes.size() == 1) return words(entry.writes.front().original);
    std::vector<std::string> keys;
    for (const JournaledWrite& write : entry.writes)
        keys.push_back(excerpt(write.key.name) + " " + words(write.original));
    return join(keys, ", ");
}

std::optional<std::string> madeOnAnotherMacOS(const JournalEntry& entry, std::string_view runningVersion) {
    if (entry.macOSVersion == runningVersion) return std::nullopt;
    return fmt::format("Made on macOS {}; this Mac now runs {}.", excerpt(entry.macOSVersion),
                       runningVersion);
}

std::optional<std::string> failureWords(const JournalEntry& entry) {
    return entry.failure ? std::optional(excerpt(*entry.failure, mostOfASentence)) : std::nullopt;
}

DriftedEntry driftedEntry(const JournalEntry& entry, const KeyReadings& keys) {
    DriftedEntry drifted{entry, {}};
    for (const KeyReading& key : keys)
        if (!key.isAsWritten()) drifted.lines.push_back(driftLine(key));
    return drifted;
}

std::optional<DriftedEntry> driftedAgent(const JournalEntry& entry, const AgentState& now) {
    if (entry.status != EntryStatus::applied || !entry.agent || now.loaded.isUnknown()) return std::nullopt;
    const AgentPosition before{entry.agent->override, entry.agent->wasLoaded};
    const AgentPosition left = leftBy(*entry.agent);
    const AgentPosition found{now.override, now.loaded.isLoaded()};
    if (found == left) return std::nullopt;
    return DriftedEntry{entry,
                        {fmt::format("{}: now {}; Brell left {}; original {}", excerpt(entry.agent->label),
                                     found.rendered(), left.rendered(), before.rendered())}};
}

std::optional<UndoProof> undoProof(const KeyReadings& keys, const std::vector<std::string>& alreadyBack) {
    if (keys.empty() && alreadyBack.empty()) return std::nullopt;
    std::vector<std::string> back;
    for (const std::string& name : alreadyBack) back.push_back(name + " was already back as it was.");
    std::string words = firstOf(proofSentences(keys), " ");
    if (!keys.empty() && !back.empty()) words += " ";
    return UndoProof{words + firstOf(back, " "),
                     std::all_of(keys.begin(), keys.end(), std::mem_fn(&KeyReading::isAsBefore))};
}

std::vector<ToldLine> toldHistory(const std::vector<HistoryLine>& history, const TweakCatalog& catalog) {
    std::vector<ToldLine> lines;
    std::map<Uuid, const HistoryLine*> next;
    for (auto line = history.rbegin(); line != history.rend(); ++line) {
        const HistoryLine*& later = next[line->entry.id];
        if (line->event != EntryStatus::capturing || isInterruption(*line, later))
            lines.push_back({line->at, line->event, entryTitle(line->entry, catalog), eventWords(*line)});
        later = &*line;
    }
    return lines;
}

}  // namespace brell
