#include "CorvaneBrell/Model/EntryWords.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <map>

#include "BrellCore/Background/AgentSteps.h"
#include "BrellCore/Background/JobPath.h"
#include "BrellCore/Journal/JournalOrigin.h"
#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Model/ValueWords.h"

namespace brell {

namespace {

constexpr auto noCapture = "The journal does not say how it was, so that it can only be kept as it is";

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

std::string keyCount(std::size_t count) {
    return count == 1 ? "1 key was changed" : fmt::format("{} keys were changed", count);
}

// In the order of the tweak's writes.
std::vector<StoredValue> valuesOf(const JournalEntry& entry, const Tweak& tweak,
                                  StoredValue JournaledWrite::*value) {
    std::vector<StoredValue> values(tweak.writes.size(), StoredValue::absent());
    for (std::size_t i = 0; i < tweak.writes.size(); ++i)
        for (const JournaledWrite& write : entry.writes)
            if (write.key == tweak.writes[i].key) values[i] = write.*value;
    return values;
}

std::string originalWords(const JournalEntry& entry, const Tweak& tweak, const TweakCatalog& catalog) {
    return valueWords(tweak, valuesOf(entry, tweak, &JournaledWrite::original), catalog.home());
}

std::string madeWords(const JournalEntry& entry, const Tweak& tweak, const TweakCatalog& catalog) {
    if (entry.direction == EntryDirection::resetToDefault) return "macOS default";
    return valueWords(tweak, valuesOf(entry, tweak, &JournaledWrite::written), catalog.home());
}

// In the order of the tweak's writes; nothing where one of them can't be read.
std::vector<StoredValue> valuesNow(const KeyReadings& keys, const Tweak& tweak) {
    std::vector<StoredValue> values;
    for (const Write& write : tweak.writes)
        for (const KeyReading& key : keys)
            if (key.write.key == write.key && key.now) values.push_back(*key.now);
    return values;
}

std::string appliedWords(const JournalEntry& entry, const TweakCatalog& catalog) {
    if (entry.agent) return entry.agent->turnedOn() ? "turned on" : "turned off";
    const Tweak* tweak = tweakOf(entry, catalog);
    if (!tweak) return keyCount(entry.writes.size());
    return madeWords(entry, *tweak, catalog) + ", was " + originalWords(entry, *tweak, catalog);
}

std::string restoredWords(const JournalEntry& entry, const TweakCatalog& catalog) {
    const Tweak* tweak = tweakOf(entry, catalog);
    if (entry.agent) return "back to " + wayBack(entry);
    if (!tweak) return "back as it was";
    return "back to " + originalWords(entry, *tweak, catalog);
}

// Of one that is not what it was before no more than its name.
std::string undoneWords(const std::vector<JournalEntry>& undone, const ChangeTitles& titles, bool isBack) {
    if (undone.size() > 1) return counted(undone.size(), "change", "changes") + (isBack ? " are back" : "");
    const std::string title = titles.of(undone.front());
    return isBack ? title + " is " + restoredWords(undone.front(), titles.catalog()) : title;
}

std::string eventWords(const HistoryLine& line, const TweakCatalog& catalog) {
    const auto failure = failureWords(line.entry);
    switch (line.event) {
        case EntryStatus::capturing: return "interrupted" + (failure ? ". " + *failure : "");
        case EntryStatus::applied: return appliedWords(line.entry, catalog);
        case EntryStatus::failed: return "failed. " + failure.value_or("No reason was recorded.");
        case EntryStatus::restored: break;
    }
    return failure ? *failure : restoredWords(line.entry, catalog);
}

std::string notOffered(std::string_view possible) {
    return "Brell does not offer this setting on this macOS, so that it can be " + std::string(possible);
}

bool isOffered(const JournalEntry& entry, const TweakCatalog& catalog, int macOSMajor) {
    const Tweak* tweak = catalog.tweak(entry.tweakID);
    return entry.kind == EntryKind::launchAgent || (tweak && tweak->isAvailable(macOSMajor));
}

}  // namespace

std::vector<std::string> changeLines(const JournalEntry& entry) {
    if (entry.agent)
        return {excerpt(entry.agent->label) + (entry.agent->turnedOn() ? ": on" : ": off") + "; back to " +
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

std::string changeWords(const JournalEntry& entry, const TweakCatalog& catalog) {
    if (entry.agent)
        return std::string(entry.agent->turnedOn() ? "Turned on" : "Turned off") + ", back to " +
               wayBack(entry);
    if (entry.lacksCapture()) return noCapture;
    const Tweak* tweak = tweakOf(entry, catalog);
    if (!tweak) return keyCount(entry.writes.size());
    return madeWords(entry, *tweak, catalog) + ", back to " + originalWords(entry, *tweak, catalog);
}

std::string driftWords(const JournalEntry& entry, const TweakCatalog& catalog,
                       const std::vector<StoredValue>& now) {
    const Tweak* tweak = tweakOf(entry, catalog);
    if (!tweak || now.size() != tweak->writes.size()) return changeWords(entry, catalog);
    return fmt::format("Now {}. Brell wrote {}; before that it was {}.",
                       valueWords(*tweak, now, catalog.home()), madeWords(entry, *tweak, catalog),
                       originalWords(entry, *tweak, catalog));
}

std::string restoreWords(const JournalEntry& entry, const KeyReadings& keys, const TweakCatalog& catalog) {
    const Tweak* tweak = tweakOf(entry, catalog);
    if (entry.agent || !tweak) return changeWords(entry, catalog);
    const std::string original = originalWords(entry, *tweak, catalog);
    if (std::all_of(keys.begin(), keys.end(), std::mem_fn(&KeyReading::isAsBefore)))
        return "Already as before: " + original;
    const std::vector<StoredValue> now = valuesNow(keys, *tweak);
    const bool isKnown = now.size() == tweak->writes.size();
    return fmt::format("Now {}, back to {}", isKnown ? valueWords(*tweak, now, catalog.home()) : "not known",
                       original);
}

std::optional<std::string> cameFromElsewhere(const JournalEntry& entry, const std::filesystem::path& home,
                                             std::string_view runningVersion) {
    // The file of an agent was recorded without links.
    const auto foreign = foreignEntries({entry}, entry.agent ? resolvedPath(home) : home, runningVersion);
    if (foreign.empty()) return std::nullopt;
    std::vector<std::string> signs;
    if (foreign.front().agentLiesElsewhere)
        signs.push_back(
            fmt::format("Its file {} lies outside your home folder.", excerpt(entry.agent->plistPath)));
    if (foreign.front().macOSIsNewer)
        signs.push_back(fmt::format("It was made on macOS {}, which is newer than this Mac's {}.",
                                    excerpt(entry.macOSVersion), runningVersion));
    signs.push_back("It may have come from another Mac or account.");
    return join(signs, " ");
}

std::optional<std::string> originWords(const JournalEntry& entry, const std::filesystem::path& home,
                                       std::string_view runningVersion) {
    if (auto words = cameFromElsewhere(entry, home, runningVersion)) return words;
    if (entry.macOSVersion == runningVersion) return std::nullopt;
    return fmt::format("Made on macOS {}; this Mac now runs {}.", excerpt(entry.macOSVersion),
                       runningVersion);
}

std::optional<std::string> whyOnlyKept(const JournalEntry& entry) {
    return entry.lacksCapture() ? std::optional(std::string(noCapture) + ".") : std::nullopt;
}

std::optional<std::string> whyNotAgain(const JournalEntry& entry, const TweakCatalog& catalog,
                                       int macOSMajor) {
    if (auto why = whyOnlyKept(entry)) return why;
    const std::string butNotAgain = "restored or kept, but not applied again.";
    if (!isOffered(entry, catalog, macOSMajor)) return notOffered(butNotAgain);
    if (entry.agent || tweakOf(entry, catalog)) return std::nullopt;
    return "This Brell makes this setting in another way, so that it can be " + butNotAgain;
}

std::optional<std::string> whyOnlyRestored(const JournalEntry& entry, const TweakCatalog& catalog,
                                           int macOSMajor) {
    if (isOffered(entry, catalog, macOSMajor)) return std::nullopt;
    return notOffered("restored, but not changed.");
}

std::optional<std::string> failureWords(const JournalEntry& entry) {
    return entry.failure ? std::optional(excerpt(*entry.failure, mostOfASentence)) : std::nullopt;
}

DriftedEntry driftedEntry(const JournalEntry& entry, const KeyReadings& keys, const TweakCatalog& catalog) {
    DriftedEntry drifted{entry, {}, restoreWords(entry, keys, catalog)};
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

std::string proofLine(const KeyReading& key) {
    return key.isAsBefore() ? fmt::format("{}: {}, as before", words(key.write.key), words(*key.now))
                            : difference(key);
}

std::optional<UndoProof> undoProof(const std::vector<JournalEntry>& undone, const KeyReadings& keys,
                                   const std::vector<std::string>& alreadyBack, const ChangeTitles& titles) {
    if (undone.empty()) return std::nullopt;
    std::vector<std::string> remarks;  // on what could not be put back whole
    for (const JournalEntry& entry : undone)
        if (const auto failure = failureWords(entry))
            remarks.push_back(fmt::format("{}: {}", titles.of(entry), *failure));
    const bool isComplete =
        remarks.empty() && std::all_of(keys.begin(), keys.end(), std::mem_fn(&KeyReading::isAsBefore));
    std::vector<std::string> sentences = proofSentences(keys);
    const std::string what = undoneWords(undone, titles, isComplete);
    if (!sentences.empty())
        sentences.front() = what + ": " + sentences.front();
    else if (remarks.empty())
        sentences.push_back(what + ".");
    if (!remarks.empty()) sentences.push_back(firstOf(remarks, " "));
    std::vector<std::string> back;
    for (const std::string& name : alreadyBack) back.push_back(name + " was already back as it was.");
    if (!back.empty()) sentences.push_back(firstOf(back, " "));
    return UndoProof{firstOf(sentences, " "), isComplete};
}

std::vector<ToldLine> toldHistory(const std::vector<HistoryLine>& history, const ChangeTitles& titles) {
    std::vector<ToldLine> lines;
    std::map<Uuid, const HistoryLine*> next;
    for (auto line = history.rbegin(); line != history.rend(); ++line) {
        const HistoryLine*& later = next[line->entry.id];
        if (line->event != EntryStatus::capturing || isInterruption(*line, later))
            lines.push_back(
                {line->at, line->event, titles.of(line->entry), eventWords(*line, titles.catalog())});
        later = &*line;
    }
    // A day of travelling may have the name of the day before.
    std::stable_sort(lines.begin(), lines.end(),
                     [](const ToldLine& one, const ToldLine& other) { return one.at > other.at; });
    return lines;
}

}  // namespace brell
