#include "BrellCore/Engine/TweakEngine.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "BrellCore/Journal/EntryOrder.h"
#include "BrellCore/Journal/RestoreScript.h"
#include "BrellCore/Preferences/NeverTouch.h"
#include "BrellCore/Preferences/PrefValueJson.h"
#include "BrellCore/Support/DurableFile.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

// Gives what the action gives, with the errors of the layers below as the engine's own.
template <class Action>
auto asEngineErrors(Action&& action) {
    try {
        return action();
    } catch (const StoreError& error) {
        throw EngineError(error.failure());
    } catch (const JournalError& error) {
        throw EngineError(error.failure());
    }
}

EngineError refused(std::string text) {
    return EngineError(Refused{std::move(text)});
}

void checkValues(const Tweak& tweak, const std::vector<PrefValue>& values) {
    if (values.size() != tweak.writes.size())
        throw refused(
            fmt::format("{}: {} values for {} keys.", tweak.id, values.size(), tweak.writes.size()));
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Write& write = tweak.writes[i];
        if (values[i].typeName() != write.target.typeName())
            throw refused(fmt::format("{}: {} takes a {}, not a {}.", tweak.id, write.key.name,
                                      write.target.typeName(), values[i].typeName()));
    }
}

// What can't be saved could not be put back.
void checkCanBeSaved(const JournaledWrite& write) try {
    JsonWriter json(JsonWriter::Layout::compact);
    writeJson(json, write.original);
    writeJson(json, write.written);
} catch (const JsonWriteError& error) {
    throw refused(write.key.rendered() + " can't be changed: " + error.what() + ".");
}

bool always(std::size_t, std::size_t) {
    return true;
}

// What turning a tweak off comes to in a state without an entry of ours to restore.
struct TurnOffRefusal {
    const Tweak& tweak;
    std::string operator()(const PerHost&) const {
        return tweak.title + " is set per host; Brell does not change it.";
    }
    std::string operator()(const Managed&) const { return tweak.title + " is managed by a profile."; }
    std::string operator()(const Unsupported& state) const { return state.message; }
    std::string operator()(const auto&) const { return tweak.title + " is not on."; }
};

}  // namespace

AgentRestoring::~AgentRestoring() = default;

TweakEngine::TweakEngine(PreferenceStore& store, Journal& journal, const TweakCatalog& catalog,
                         EngineSettings settings)
    : store_(store), journal_(journal), catalog_(catalog), settings_(std::move(settings)) {}

JournalEntry TweakEngine::apply(const Tweak& tweak, std::optional<std::vector<PrefValue>> values,
                                std::optional<std::string> choiceID) {
    const std::vector<PrefValue> chosen = values ? std::move(*values) : tweak.targets();
    checkValues(tweak, chosen);
    return change(tweak, EntryDirection::on, {chosen.begin(), chosen.end()}, std::move(choiceID));
}

JournalEntry TweakEngine::resetToDefault(const Tweak& tweak) {
    return change(tweak, EntryDirection::resetToDefault, Values(tweak.writes.size()), std::nullopt);
}

JournalEntry TweakEngine::restore(const Uuid& entryID, bool overridingDrift,
                                  const std::function<void()>& check) {
    const std::lock_guard lock(mutex_);
    return asEngineErrors([&] {
        activeEntry(entryID);  // before the lock's file is made, so that a refusal leaves nothing behind
        const Journal::Exclusive held = journal_.exclusive();
        check();
        return restoreLocked(entryID, overridingDrift, held);
    });
}

JournalEntry TweakEngine::turnOff(const Tweak& tweak, bool overridingDrift) {
    const std::lock_guard lock(mutex_);
    return asEngineErrors([&] {
        const Values removed(tweak.writes.size());
        const auto entryToRestore = [&]() -> std::optional<Uuid> {
            const TweakState state = status(tweak).state;
            if (const auto entry = activeEntryOf(state)) return entry;
            if (!std::holds_alternative<SetBeforeBrell>(state))
                throw refused(std::visit(TurnOffRefusal{tweak}, state));
            captureOriginals(tweak, removed);
            return std::nullopt;  // set before us: the keys are removed
        };
        entryToRestore();  // before the lock's file is made, so that a refusal leaves nothing behind
        const Journal::Exclusive held = journal_.exclusive();
        // Again: what was on may have been put back by somebody else, who is not to lose what is there now.
        if (const auto entry = entryToRestore()) return restoreLocked(*entry, overridingDrift, held);
        return changeLocked(tweak, EntryDirection::resetToDefault, removed, std::nullopt, held);
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
    return recoverInterrupted(always);
}

RestoreAllOutcome TweakEngine::recoverInterrupted(const Progress& goOn) {
    return restoreEntries([this] { return interruptedEntries(); }, {}, goOn);
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
            held = journal_.exclusive();
        } catch (const JournalError& error) {
            for (const JournalEntry& entry : entries) outcome.failed.emplace_back(entry.id, error.what());
            return outcome;
        }
        entries = wanted();
        for (std::size_t i = 0; i < entries.size() && goOn(i, entries.size()); ++i)
            restoreInto(outcome, entries[i], confirmedDrift.contains(entries[i].id), *held);
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

AgentChange TweakEngine::beginAgentChange(const std::string& label,
                                          const std::function<AgentCapture()>& capture) {
    return asEngineErrors([&] {
        Journal::Exclusive held = journal_.exclusive();
        if (journal_.activeEntry(agentTweakID(label)))
            throw refused(label + " already has an active change; restore it from the Journal first.");
        AgentCapture captured = capture();
        JournalEntry entry = newEntry(agentTweakID(label), EntryKind::launchAgent, EntryDirection::on);
        entry.agent = std::move(captured);
        journal_.upsert(entry, held);
        rewriteRestoreScript(held);
        return AgentChange{std::move(entry), std::move(held)};
    });
}

JournalEntry TweakEngine::finishAgentChange(AgentChange change, EntryStatus status,
                                            std::optional<std::string> failure) {
    return asEngineErrors([&] {
        change.entry.status = status;
        // What a tool printed may be any bytes, and must not keep the outcome out of the journal.
        if (failure) change.entry.failure = repairedUtf8(*failure);
        if (status == EntryStatus::applied)
            saveApplied(change.entry, change.held);
        else
            journal_.upsert(change.entry, change.held);
        rewriteRestoreScript(change.held);
        return change.entry;
    });
}

std::string TweakEngine::restoreScriptText() {
    return RestoreScript::render(journal_.active(), settings_.clock());
}

void TweakEngine::rewriteRestoreScript() noexcept try {
    if (settings_.restoreScriptURL) rewriteRestoreScript(journal_.exclusive());
} catch (const std::exception&) {
    // The script on disk stays the one before; the next change writes it again.
}

JournalEntry TweakEngine::change(const Tweak& tweak, EntryDirection direction, const Values& values,
                                 std::optional<std::string> choiceID) {
    const std::lock_guard lock(mutex_);
    return asEngineErrors([&] {
        captureOriginals(tweak, values);  // before the lock's file is made, so that a refusal leaves nothing
        return changeLocked(tweak, direction, values, std::move(choiceID), journal_.exclusive());
    });
}

JournalEntry TweakEngine::changeLocked(const Tweak& tweak, EntryDirection direction, const Values& values,
                                       std::optional<std::string> choiceID, const Journal::Exclusive& held) {
    JournalEntry entry = newEntry(tweak.id, EntryKind::preference, direction);
    entry.writes = captureOriginals(tweak, values);  // again: only now can nobody else change the answer
    entry.choiceID = std::move(choiceID);
    journal_.upsert(entry, held);
    // Before the first write: from here on the script undoes the change, wherever the process ends.
    rewriteRestoreScript(held);
    if (afterCaptureHook_) afterCaptureHook_(entry);

    for (std::size_t i = 0; i < entry.writes.size(); ++i) {
        const auto failure = writeVerified(entry.writes[i]);
        if (failure) throw rollBack(entry, i + 1, *failure, held);
    }
    entry.status = EntryStatus::applied;
    saveApplied(entry, held);
    return entry;
}

// Of a change that is made: when it can't be saved, the journal still says that it is under way.
void TweakEngine::saveApplied(const JournalEntry& entry, const Journal::Exclusive& held) try {
    journal_.upsert(entry, held);
} catch (const JournalError& error) {
    throw EngineError(error.failure(),
                      subjectOf(entry) + " was changed all the same; it is listed as interrupted.");
}

// For a sentence.
std::string TweakEngine::subjectOf(const JournalEntry& entry) const {
    if (entry.agent) return entry.agent->label;
    const Tweak* tweak = catalog_.tweak(entry.tweakID);
    return tweak ? tweak->title : entry.tweakID;
}

JournalEntry TweakEngine::newEntry(std::string tweakID, EntryKind kind, EntryDirection direction) const {
    JournalEntry entry{};
    entry.id = Uuid::random();
    entry.tweakID = std::move(tweakID);
    entry.kind = kind;
    entry.direction = direction;
    entry.status = EntryStatus::capturing;
    entry.appliedAt = settings_.clock();
    entry.macOSVersion = settings_.macOSVersion;
    return entry;
}

// Refuses what may not be changed; otherwise what each key holds now and what it is to hold.
std::vector<JournaledWrite> TweakEngine::captureOriginals(const Tweak& tweak, const Values& values) {
    if (!tweak.isAvailable(settings_.macOSMajor))
        throw refused(fmt::format("{} is not offered on macOS {}.", tweak.title, settings_.macOSMajor));
    if (const auto entry = journal_.activeEntry(tweak.id))
        throw refused(fmt::format("{} already has an active change ({}); turn it off first.", tweak.title,
                                  rawValue(entry->status)));
    std::vector<JournaledWrite> writes;
    for (std::size_t i = 0; i < tweak.writes.size(); ++i) {
        const PrefKey& key = tweak.writes[i].key;
        if (NeverTouch::isForbiddenDomain(key.domain)) throw refused(key.domain + " is never changed.");
        if (store_.hasByHostValue(key))
            throw refused(key.rendered() + " is set per host; Brell does not change it here.");
        if (store_.isForced(key))
            throw refused(key.rendered() + " is managed by a profile; a change would have no effect.");
        writes.push_back({key, store_.exactValue(key), values[i]});
        checkCanBeSaved(writes.back());
    }
    return writes;
}

std::optional<EngineFailure> TweakEngine::writeVerified(const JournaledWrite& write) try {
    store_.put(write.written, write.key);
    store_.synchronize(write.key.domain);
    const StoredValue read = store_.exactValue(write.key);
    if (read == write.written) return std::nullopt;
    return VerifyFailed{write.key, write.written, read};
} catch (const StoreError& error) {
    return error.failure();
}

// Puts the first so many writes back, newest first, and records how that went. Gives the error to raise: the
// reason for rolling back, and what did not come back.
EngineError TweakEngine::rollBack(JournalEntry& entry, std::size_t written, const EngineFailure& reason,
                                  const Journal::Exclusive& held) {
    entry.status = EntryStatus::failed;
    std::vector<std::string> stuck;
    for (std::size_t i = written; i-- > 0;) {
        try {
            putBack(entry.writes[i], Foreign::stays);
        } catch (const StoreError& error) {
            entry.status = EntryStatus::capturing;  // still active: recovery tries again
            stuck.push_back(error.what());
        }
    }
    const EngineError error = stuck.empty() ? EngineError(reason) : EngineError(reason, join(stuck, " "));
    entry.failure = repairedUtf8(error.what());  // else a path in it could keep it out of the journal
    try {
        journal_.upsert(entry, held);
    } catch (const JournalError&) {
        // The entry stays on disk as it was saved before the change: active, with every original.
    }
    rewriteRestoreScript(held);
    return error;
}

// Every key, also behind one that does not come back. Raises what the first of these raised.
void TweakEngine::putBack(const std::vector<JournaledWrite>& writes, Foreign foreign) {
    std::exception_ptr first;
    for (const JournaledWrite& write : writes) try {
            putBack(write, foreign);
        } catch (const StoreError&) {
            if (!first) first = std::current_exception();
        }
    if (first) std::rethrow_exception(first);
}

// Makes the key hold its original again, and proves it. Raises StoreError when it does not come back.
void TweakEngine::putBack(const JournaledWrite& write, Foreign foreign) {
    if (foreign == Foreign::stays) store_.exactValue(write.key);  // raises where there is one
    try {
        store_.put(write.original, write.key);
    } catch (const StoreError&) {
        // A store that took neither the change nor this holds the original all the same.
        if (store_.exactValue(write.key) != write.original) throw;
    }
    store_.synchronize(write.key.domain);
    const StoredValue read = store_.exactValue(write.key);
    if (read != write.original)
        throw StoreError(StoreIo{"After putting back " + write.key.rendered() + ", macOS reports " +
                                 read.rendered() + " instead of " + write.original.rendered() + "."});
}

JournalEntry TweakEngine::activeEntry(const Uuid& entryID) {
    auto entry = journal_.entry(entryID);
    if (!entry || !entry->isActive()) throw EngineError(NotActive{entryID});
    return std::move(*entry);
}

JournalEntry TweakEngine::restoreLocked(const Uuid& entryID, bool overridingDrift,
                                        const Journal::Exclusive& held) {
    JournalEntry entry = activeEntry(entryID);
    switch (entry.kind) {
        case EntryKind::launchAgent:
            if (!entry.agent) throw refused("Entry " + entryID.text() + " has no agent capture.");
            if (!agentRestorer_) throw EngineError(NoAgentRestorer{});
            agentRestorer_->restore(*entry.agent);
            return saveRestored(entry, held);
        case EntryKind::preference: return restorePreferences(std::move(entry), overridingDrift, held);
    }
    return entry;
}

// As hasDrifted, but a file that can't be read is no change that somebody made: that raises StoreError.
bool TweakEngine::holdsSomethingElse(const JournalEntry& entry) try {
    return std::any_of(entry.writes.begin(), entry.writes.end(), [&](const JournaledWrite& write) {
        return store_.exactValue(write.key) != write.written;
    });
} catch (const StoreError& error) {
    if (std::holds_alternative<UnsupportedType>(error.failure())) return true;
    throw;
}

JournalEntry TweakEngine::restorePreferences(JournalEntry entry, bool overridingDrift,
                                             const Journal::Exclusive& held) {
    const bool isApplied = entry.status == EntryStatus::applied;
    const bool isChecked = isApplied && !overridingDrift;
    // Of an applied one the user has confirmed every drift, or there is none.
    const Foreign foreign = isApplied ? Foreign::givesWay : Foreign::stays;
    if (isChecked && holdsSomethingElse(entry)) throw EngineError(Drift{entry.id});
    try {
        putBack(entry.writes, foreign);
        return saveRestored(entry, held);
    } catch (const EngineError& unsaved) {
        if (isChecked && redo(entry)) throw EngineError(unsaved.failure());  // nothing was changed after all
        throw;
    } catch (const std::exception&) {
        if (isChecked) redo(entry);
        throw;
    }
}

// After an undo that failed half way: to the next one, keys that no longer hold what Brell wrote would look
// like somebody else's change. Where that fails too, the next undo asks first. True when all of them hold it.
bool TweakEngine::redo(const JournalEntry& entry) noexcept try {
    if (journal_.entry(entry.id) != entry) return false;  // the undo is on record after all
    bool isRedone = true;
    for (std::size_t i = entry.writes.size(); i-- > 0;)
        if (writeVerified(entry.writes[i])) isRedone = false;
    return isRedone;
} catch (const std::exception&) {
    return false;  // the entry is active and has every original
}

// Of an undo that is made: when it can't be saved, the journal still says what it said before.
JournalEntry TweakEngine::saveRestored(const JournalEntry& entry, const Journal::Exclusive& held) try {
    JournalEntry restored = entry;
    restored.status = EntryStatus::restored;
    restored.restoredAt = settings_.clock();
    restored.failure = std::nullopt;
    journal_.upsert(restored, held);
    rewriteRestoreScript(held);
    return restored;
} catch (const JournalError& error) {
    const bool wasApplied = entry.status == EntryStatus::applied;
    throw EngineError(error.failure(), subjectOf(entry) +
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

void TweakEngine::rewriteRestoreScript(const Journal::Exclusive&) noexcept try {
    if (!settings_.restoreScriptURL) return;
    // Not private to the user: it is run with sh, and may be copied.
    constexpr unsigned permissions = 0666;
    replaceFile(*settings_.restoreScriptURL, restoreScriptText(), Durability::powerCut, permissions);
} catch (const std::exception&) {
    // The script on disk stays the one before; the next change writes it again.
}

}  // namespace brell
