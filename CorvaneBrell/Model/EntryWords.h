// Every sentence about a change of the journal: what it did, where its undo leads, what others did to it
// since, what became of it. The journal is a file like any other: what it says is shown in one line and cut.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "BrellCore/Background/ChangeTitles.h"
#include "BrellCore/Journal/History.h"
#include "CorvaneBrell/Model/KeyReadings.h"

namespace brell {

struct AgentState;

// One line for each key: "com.apple.dock autohide: true; back to absent". For an agent its label and how it
// was switched.
std::vector<std::string> changeLines(const JournalEntry& entry);

// One line for each key: "com.apple.dock autohide: back to absent". An agent's entry has none.
std::vector<std::string> putBackLines(const JournalEntry& entry);
// The same for a change that is made once more: "com.apple.dock autohide: again true".
std::vector<std::string> againLines(const JournalEntry& entry);

// Where an undo leads: "absent"; with several keys "autohide absent, tilesize 36"; for an agent "on".
std::string wayBack(const JournalEntry& entry);

// A change and where its undo leads: "Large, back to 41", "Turned off, back to on". Of a tweak that
// the catalog does not know only how many keys it has.
std::string changeWords(const JournalEntry& entry, const TweakCatalog& catalog);
// The same for one that others changed since: "Now 50. Brell wrote Large; before that it was 41."
std::string driftWords(const JournalEntry& entry, const TweakCatalog& catalog,
                       const std::vector<StoredValue>& now);
// The effect of an undo now that the keys read so: "Now 50, back to 41".
std::string restoreWords(const JournalEntry& entry, const KeyReadings& keys, const TweakCatalog& catalog);

// Says so when it was not made here: its login item's file lies outside this home, or its macOS is newer than
// the running one.
std::optional<std::string> cameFromElsewhere(const JournalEntry& entry, const std::filesystem::path& home,
                                             std::string_view runningVersion);
// That, or that it was made on another version of macOS than the running one.
std::optional<std::string> originWords(const JournalEntry& entry, const std::filesystem::path& home,
                                       std::string_view runningVersion);

// Why one that lacks its capture can neither be put back nor made again; nothing of any other.
std::optional<std::string> whyOnlyKept(const JournalEntry& entry);
// Why what it made can't be made again; nothing where it can.
std::optional<std::string> whyNotAgain(const JournalEntry& entry, const TweakCatalog& catalog,
                                       int macOSMajor);
// The same of one in force, which only can be restored.
std::optional<std::string> whyOnlyRestored(const JournalEntry& entry, const TweakCatalog& catalog,
                                           int macOSMajor);

// Why it did not go well, or what its undo left.
std::optional<std::string> failureWords(const JournalEntry& entry);

// A change that others changed since, or that can't be undone as it is.
struct DriftedEntry {
    JournalEntry entry;
    // One for each key that no longer holds what was written, "com.apple.dock autohide: now absent; Brell
    // wrote true; original false", or the one of an agent: "com.acme.agent: now override enabled, loaded;
    // Brell left override disabled, not loaded; original override absent, loaded".
    std::vector<std::string> lines;
    std::string words = {};                   // the effect of restoring it now; of an agent nothing
    std::optional<std::string> refusal = {};  // why its undo is refused; then nobody need have changed it
    bool operator==(const DriftedEntry&) const = default;
};

// keys are the entry's as they read now; one that can't be read counts as drifted.
DriftedEntry driftedEntry(const JournalEntry& entry, const KeyReadings& keys, const TweakCatalog& catalog);

// now is what launchd says about the entry's label. Nothing when the agent is as the change left it, for an
// entry that is not applied or not an agent's, and where launchd could not say.
std::optional<DriftedEntry> driftedAgent(const JournalEntry& entry, const AgentState& now);

// "com.apple.dock autohide: false, as before"
std::string proofLine(const KeyReading& key);

// The result of an undo.
struct UndoProof {
    // "Icon size is back to 41: 1 of 1 key is exactly as before."; every key that is not is named.
    std::string words;
    bool isComplete;  // every key is as before, and no undo left a remark
    bool operator==(const UndoProof&) const = default;
};

// keys are those of the undone changes; alreadyBack names those that others had undone before. Nothing where
// nothing was undone.
std::optional<UndoProof> undoProof(const std::vector<JournalEntry>& undone, const KeyReadings& keys,
                                   const std::vector<std::string>& alreadyBack, const ChangeTitles& titles);

// A line of the history, as far as it is told: there may be a hundred thousand.
struct ToldLine {
    TimeStamp at;
    EntryStatus event;
    std::string title;  // of what was changed
    std::string
        words;  // what became of it: "Large, was Small", "back to Small", "failed. Reason", "interrupted"
    bool operator==(const ToldLine&) const = default;
};

// The lines that tell something, newest first. The beginning of a change that came to its end says nothing
// that its end does not.
std::vector<ToldLine> toldHistory(const std::vector<HistoryLine>& history, const ChangeTitles& titles);

}  // namespace brell
