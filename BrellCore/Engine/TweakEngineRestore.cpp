// Undoing: one change, several, or what was interrupted.

#include "BrellCore/Engine/TweakEngine.h"
#include "BrellCore/Engine/VerifiedWrite.h"
#include "BrellCore/Journal/EntryOrder.h"
#include "BrellCore/Preferences/PreferenceStore.h"

namespace brell {

namespace {

bool always(std::size_t, std::size_t) {
    return true;
}

}  // namespace

JournalEntry TweakEngine::restore(const Uuid& entryID, bool overridingDrift,
                                  const std::function<void()>& check) {
    const std::lock_guard lock(mutex_);
    return asEngineErrors([&] {
        activeEntry(entryID);  // before the lock's file is made, so that a refusal leaves nothing behind
        const Journal::Exclusive held = exclusiveJournal();
        check();
        return restoreOne(entryID, overridingDrift, held);
    });
}

RestoreAllOutcome TweakEngine::restoreAll(const std::set<Uuid>& confirmedDrift) {
    return restoreEntries([this] { return newestFirst(journal_.active()); }, confirmedDrift, always);
}

RestoreAllOutcome TweakEngine::restoreSelected(const std::vector<Uuid>& entryIDs,
                                               const std::set<Uuid>& confirmedDrift, const Progress& goOn) {
    return restoreEntries([&] { return newestFirst(journal_.entries(entryIDs)); }, confirmedDrift, goOn);
}

RestoreAllOutcome TweakEngine::recoverInterrupted() {
    return recoverInterrupted([](const JournalEntry&) { return true; }, always);
}

RestoreAllOutcome TweakEngine::recoverInterrupted(const std::function<bool(const JournalEntry&)>& isWanted,
                                                  const Progress& goOn) {
    const auto wanted = [&] {
        std::vector<JournalEntry> entries = interruptedEntries();
        std::erase_if(entries, [&](const JournalEntry& entry) { return !isWanted(entry); });
        return entries;
    };
    return restoreEntries(wanted, {}, goOn);
}

// Restores what is wanted: asked for before the lock's file is made, so that nothing to do leaves nothing
// behind, and again when nobody else can change the answer. Interrupted entries are never checked for drift.
RestoreAllOutcome TweakEngine::restoreEntries(const std::function<std::vector<JournalEntry>()>& wanted,
                                              const std::set<Uuid>& confirmedDrift, const Progress& goOn) {
    const std::lock_guard lock(mutex_);
    return asEngineErrors([&] {
        RestoreAllOutcome outcome;
        std::vector<JournalEntry> entries = wanted();
        if (entries.empty()) return outcome;
        std::optional<Journal::Exclusive> held;
        try {
            held = exclusiveJournal();
        } catch (const JournalError& error) {
            for (const JournalEntry& entry : entries) outcome.failed.emplace_back(entry.id, error.what());
            return outcome;
        }
        entries = wanted();
        TimeStamp scriptTime = settings_.clock();
        for (std::size_t i = 0; i < entries.size() && goOn(i, entries.size()); ++i) {
            restoreInto(outcome, entries[i], confirmedDrift.contains(entries[i].id), *held);
            // Once a second while there are many: until then the script undoes some that are undone already.
            const TimeStamp now = settings_.clock();
            if (now != scriptTime && !outcome.restored.empty()) script_.keep();
            scriptTime = now;
        }
        if (!outcome.restored.empty()) script_.keep();
        return outcome;
    });
}

std::vector<JournalEntry> TweakEngine::driftedEntries() {
    std::vector<JournalEntry> drifted;
    const auto preferences = store_.reader();
    for (JournalEntry& entry : journal_.entries(EntryStatus::applied))
        if (entry.kind == EntryKind::preference && hasDrifted(entry, *preferences))
            drifted.push_back(std::move(entry));
    return drifted;
}

JournalEntry TweakEngine::activeEntry(const Uuid& entryID) {
    auto entry = journal_.entry(entryID);
    if (!entry || !entry->isActive()) throw EngineError(NotActive{entryID});
    return std::move(*entry);
}

JournalEntry TweakEngine::restoreOne(const Uuid& entryID, bool overridingDrift,
                                     const Journal::Exclusive& held) {
    JournalEntry entry = restoreLocked(entryID, overridingDrift, held);
    script_.keep();
    return entry;
}

JournalEntry TweakEngine::restoreLocked(const Uuid& entryID, bool overridingDrift,
                                        const Journal::Exclusive& held) {
    JournalEntry entry = activeEntry(entryID);
    switch (entry.kind) {
        case EntryKind::launchAgent:
            if (!entry.agent)
                throw EngineError(Refused{"Entry " + entryID.text() + " has no agent capture."});
            if (!agentRestorer_) throw EngineError(NoAgentRestorer{});
            return saveRestored(entry, held, agentRestorer_->restore(*entry.agent));
        case EntryKind::preference: return restorePreferences(std::move(entry), overridingDrift, held);
    }
    return entry;
}

JournalEntry TweakEngine::restorePreferences(JournalEntry entry, bool overridingDrift,
                                             const Journal::Exclusive& held) {
    const bool isApplied = entry.status == EntryStatus::applied;
    if (isApplied && !overridingDrift && holdsSomebodyElses(entry, store_))
        throw EngineError(Drift{entry.id});
    // Of an applied one the user has confirmed every drift, or there is none.
    const bool mayReplace = isApplied || overridingDrift;
    putBack(entry.writes, mayReplace ? OtherType::replace : OtherType::keep, store_);
    return saveRestored(entry, held);
}

// Of an undo that is made: when it can't be saved, the journal still says what it said before.
JournalEntry TweakEngine::saveRestored(const JournalEntry& entry, const Journal::Exclusive& held,
                                       std::optional<std::string> remark) try {
    JournalEntry restored = entry;
    restored.status = EntryStatus::restored;
    restored.restoredAt = settings_.clock();
    restored.failure = std::move(remark);
    journal_.upsert(restored, held);
    tidyUp(held);
    return restored;
} catch (const JournalError& error) {
    const bool wasApplied = entry.status == EntryStatus::applied;
    throw EngineError(error.failure(), entryTitle(entry, catalog_) +
                                           " was put back all the same; it is still listed as " +
                                           (wasApplied ? "active." : "interrupted."));
}

void TweakEngine::restoreInto(RestoreAllOutcome& outcome, const JournalEntry& entry, bool overridingDrift,
                              const Journal::Exclusive& held) {
    try {
        asEngineErrors([&] { return restoreLocked(entry.id, overridingDrift, held); });
        outcome.restored.push_back(entry.id);
        const Tweak* tweak = catalog_.tweak(entry.tweakID);
        if (tweak && entry.kind == EntryKind::preference) outcome.pendingEffects.insert(tweak->effect);
    } catch (const EngineError& error) {
        if (std::holds_alternative<Drift>(error.failure()))
            outcome.skippedDrifted.push_back(entry.id);
        else
            outcome.failed.emplace_back(entry.id, error.what());
    } catch (const std::exception& error) {
        outcome.failed.emplace_back(entry.id, error.what());
    }
}

}  // namespace brell
