// The only component that changes the user's preferences: every change is journaled before it is made, read
// back after it, and can be undone.
#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Engine/Drift.h"
#include "BrellCore/Engine/EngineError.h"
#include "BrellCore/Engine/RestoreScriptFile.h"
#include "BrellCore/Engine/TweakStatus.h"
#include "BrellCore/Journal/Journal.h"

namespace brell {

// Puts a LaunchAgent back into a captured state.
class AgentRestoring {
public:
    virtual ~AgentRestoring();
    // Any exception derived from std::exception means that it is not back; its text is shown. Gives a
    // sentence when it is as far back as it can be, and why no further: nothing is left to undo then.
    virtual std::optional<std::string> restore(const AgentCapture& capture) = 0;
    // In which state it is, in words, when that is not the one that the change of this capture left; else
    // nothing. Any such exception means that it can't be told.
    virtual std::optional<std::string> otherState(const AgentCapture& capture) = 0;
    // Why restoring it is refused, however often it is tried: a sentence; nothing when it is not. Any such
    // exception means that it can't be told.
    virtual std::optional<std::string> whyNotRestored(const AgentCapture& capture) = 0;
};

// The outcome of restoring several entries.
struct RestoreAllOutcome {
    std::vector<Uuid> restored;                        // in the order of restoring
    std::vector<Uuid> skippedDrifted;                  // left alone until the user confirms them
    std::vector<std::pair<Uuid, std::string>> failed;  // with the reason
    std::set<EffectClass> pendingEffects;              // of the restored tweaks
    bool operator==(const RestoreAllOutcome&) const = default;
};

struct EngineSettings {
    std::string macOSVersion;  // "26.1.0", recorded in every entry
    int macOSMajor;
    std::optional<std::filesystem::path> restoreScriptURL;  // nothing: no script is kept
    Clock clock = systemNow;
};

// A change of a LaunchAgent under way: nobody else saves an entry before it is finished. One that is dropped
// instead stays in the journal as interrupted.
struct AgentChange {
    JournalEntry entry;
    Journal::Exclusive held;
};

// One a journal; any thread may call it. Operations that change preferences raise EngineError and run one at
// a time, in this process and in all others that use the journal: they hold the engine's mutex, then the
// journal's advisory lock. A refusal writes nothing. A failed change is put back; when even that fails its
// entry stays active, so that recovery tries again.
class TweakEngine {
public:
    // The collaborators must outlive the engine.
    TweakEngine(PreferenceStore& store, Journal& journal, const TweakCatalog& catalog,
                EngineSettings settings);

    // To be set before the engine is shared between threads.
    void setAgentRestorer(AgentRestoring* restorer) { agentRestorer_ = restorer; }
    // Called when an entry is durable and nothing is written yet.
    void setAfterCaptureHook(std::function<void(const JournalEntry&)> hook) {
        afterCaptureHook_ = std::move(hook);
    }

    Journal& journal() { return journal_; }
    TweakStatus status(const Tweak& tweak) { return readStatus(tweak, store_, journal_); }
    std::vector<StatusReading> statuses(const std::vector<const Tweak*>& tweaks) {
        return readStatuses(tweaks, store_, journal_);
    }

    // Sets the tweak's own targets, or these values: one for each write, of the write's type.
    JournalEntry apply(const Tweak& tweak, std::optional<std::vector<PrefValue>> values = std::nullopt,
                       std::optional<std::string> choiceID = std::nullopt);
    // Removes the tweak's keys, so that the system's defaults take effect.
    JournalEntry resetToDefault(const Tweak& tweak);
    // Undoes one active entry and gives it as saved. A key that was changed since by others stops it with
    // Drift, and one of an interrupted change that holds a kind that Brell never writes with the store's
    // failure, unless that is overridden. After any other error the keys that came back stay back, the entry
    // is active, and the next undo finishes it. check is called with the lock held, before anything is put
    // back; what it raises leaves everything as it is.
    JournalEntry restore(const Uuid& entryID, bool overridingDrift, const std::function<void()>& check);
    JournalEntry restore(const Uuid& entryID, bool overridingDrift) {
        return restore(entryID, overridingDrift, [] {});
    }
    // Undoes whatever makes the tweak on: our entry, or values set before we came.
    JournalEntry turnOff(const Tweak& tweak, bool overridingDrift);

    // Closes an applied entry that others changed since, without writing: what is there now stays. Refused
    // when nobody did; also one that could not be undone as it is: an interrupted one, of which a key holds a
    // kind that Brell never writes; one of a domain that Brell may not change; and an agent's that does not
    // say how it was or whose undo is refused, interrupted or not. Gives the entry as saved:
    // restored, with a failure text that says what was kept.
    JournalEntry keepTheirs(const Uuid& entryID);

    // Undo every active entry, newest first, those that drifted only when their id is confirmed. Failures of
    // entries, and a lock that can't be had, are part of the outcome; EngineError when the journal can't be
    // read.
    RestoreAllOutcome restoreAll(const std::set<Uuid>& confirmedDrift);
    // The same for these entries. goOn is asked on the calling thread before each; false ends it there.
    using Progress = std::function<bool(std::size_t done, std::size_t total)>;
    RestoreAllOutcome restoreSelected(const std::vector<Uuid>& entryIDs, const std::set<Uuid>& confirmedDrift,
                                      const Progress& goOn);
    // Undo every interrupted entry, or each that isWanted, in the journal's order. isWanted is asked before
    // the lock is taken, so that nothing to do leaves nothing behind, and again with it held: that answer
    // holds.
    RestoreAllOutcome recoverInterrupted();
    RestoreAllOutcome recoverInterrupted(const std::function<bool(const JournalEntry&)>& isWanted,
                                         const Progress& goOn);

    std::vector<JournalEntry> driftedEntries();
    std::vector<JournalEntry> interruptedEntries() { return journal_.entries(EntryStatus::capturing); }

    // Around a change of a LaunchAgent, without the engine's mutex. begin refuses a label that has an active
    // change and makes the capture durable; capture is called with the advisory lock held, so that no other
    // process changes the answer, and what it raises leaves the journal as it is. finish saves the entry with
    // this status.
    AgentChange beginAgentChange(const std::string& label, const std::function<AgentCapture()>& capture);
    AgentChange beginAgentChange(const std::string& label, const AgentCapture& capture) {
        return beginAgentChange(label, [&] { return capture; });
    }
    JournalEntry finishAgentChange(AgentChange change, EntryStatus status,
                                   std::optional<std::string> failure);

    std::string restoreScriptText() { return script_.text(); }
    // Takes the journal's own mutex only, so that it may be called from inside a change. A failure is no
    // failure of what was done before it.
    void rewriteRestoreScript() noexcept;
    // Why the script on disk may not undo every change, in a whole sentence; told once.
    std::optional<std::string> untoldScriptTrouble() { return script_.untoldTrouble(); }

private:
    using Values = std::vector<StoredValue>;  // one for each write of the tweak

    Journal::Exclusive exclusiveJournal();
    JournalEntry change(const Tweak& tweak, EntryDirection direction, const Values& values,
                        std::optional<std::string> choiceID);
    JournalEntry changeLocked(const Tweak& tweak, EntryDirection direction, const Values& values,
                              std::optional<std::string> choiceID, const Journal::Exclusive& held);
    void saveApplied(const JournalEntry& entry, const Journal::Exclusive& held);
    JournalEntry newEntry(std::string tweakID, EntryKind kind, EntryDirection direction) const;
    void checkChange(const Tweak& tweak, const Values& values);
    std::vector<JournaledWrite> captureOriginals(const Tweak& tweak, const Values& values);
    EngineError rollBack(JournalEntry& entry, std::size_t written, const EngineFailure& reason,
                         const Journal::Exclusive& held);
    JournalEntry activeEntry(const Uuid& entryID);
    RestoreAllOutcome restoreEntries(const std::function<std::vector<JournalEntry>()>& wanted,
                                     const std::set<Uuid>& confirmedDrift, const Progress& goOn);
    JournalEntry restoreOne(const Uuid& entryID, bool overridingDrift, const Journal::Exclusive& held);
    JournalEntry restoreLocked(const Uuid& entryID, bool overridingDrift, const Journal::Exclusive& held);
    JournalEntry restorePreferences(JournalEntry entry, bool overridingDrift, const Journal::Exclusive& held);
    std::string whatIsKept(const JournalEntry& entry);
    void tidyUp(const Journal::Exclusive& held) noexcept;
    JournalEntry saveRestored(const JournalEntry& entry, const Journal::Exclusive& held,
                              std::optional<std::string> remark = std::nullopt);
    void restoreInto(RestoreAllOutcome& outcome, const JournalEntry& entry, bool overridingDrift,
                     const Journal::Exclusive& held);

    PreferenceStore& store_;
    Journal& journal_;
    const TweakCatalog& catalog_;
    const EngineSettings settings_;
    RestoreScriptFile script_;
    AgentRestoring* agentRestorer_ = nullptr;
    std::atomic<std::int64_t> tidiedOn_ = 0;  // the day, counted from 1970
    std::function<void(const JournalEntry&)> afterCaptureHook_;

    std::mutex mutex_;  // held for the whole of every operation that changes preferences
};

}  // namespace brell
