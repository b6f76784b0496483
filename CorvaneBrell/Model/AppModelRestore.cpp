// Undoing: what would be put back is shown first, what others changed since is asked for, and then it is put
// back.

#include <algorithm>

#include "BrellCore/Preferences/PreferenceStore.h"
#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Model/EntryText.h"
#include "CorvaneBrell/Model/UndoProof.h"

namespace brell {

namespace {

void append(const std::vector<std::string>& more, std::vector<std::string>& lines) {
    lines.insert(lines.end(), more.begin(), more.end());
}

std::string restoringText(std::size_t changes) {
    return changes == 1 ? "Restoring a change" : "Restoring changes";
}

bool holdsAgent(const std::vector<JournalEntry>& entries) {
    return std::any_of(entries.begin(), entries.end(),
                       [](const JournalEntry& entry) { return entry.agent.has_value(); });
}

}  // namespace

std::string DriftRequest::title() const {
    return entries.size() == 1 ? "This setting was changed outside Brell"
                               : "Some settings were changed outside Brell";
}

std::string DriftRequest::explanation() const {
    if (entries.size() != 1)
        return "These keys no longer hold the value Brell wrote. Tick the ones to restore anyway; the others "
               "are left as they are. Everything else Brell changed is restored.";
    return "The key no longer holds the value Brell wrote. Restoring overwrites what is there now with the "
           "original Brell saved; cancelling leaves everything exactly as it is.";
}

void AppModel::askRestore(const Uuid& entryID) {
    for (const JournalEntry& entry : state_.entries)
        if (entry.id == entryID && entry.isActive())
            return askRestoreOf("Restore " + nameOf(entry) + "?", {entry});
    fail(describe(EngineFailure(NotActive{entryID})));
}

void AppModel::askRestoreAll() {
    std::vector<JournalEntry> active;
    std::copy_if(state_.entries.begin(), state_.entries.end(), std::back_inserter(active),
                 [](const JournalEntry& entry) { return entry.isActive(); });
    askRestoreOf("Restore everything?", active);
}

void AppModel::askUndoSince(const Uuid& entryID) {
    std::vector<JournalEntry> later;
    for (const JournalEntry& entry : state_.entries) {
        if (entry.isActive()) later.push_back(entry);
        if (entry.id == entryID)
            return askRestoreOf("Restore everything since " + nameOf(entry) + "?", later);
    }
    fail(describe(EngineFailure(NotActive{entryID})));
}

void AppModel::askRestoreOf(std::string title, const std::vector<JournalEntry>& entries) {
    if (entries.empty()) return;
    RestoreRequest request{Uuid::random(), std::move(title), {}, {}};
    for (const JournalEntry& entry : entries) {
        request.entries.push_back(entry.id);
        append(putBackLines(entry), request.lines);
        if (entry.agent) append(deps_->toggle.previewRestore(*entry.agent), request.lines);
    }
    set(&AppState::restoreRequest, std::move(request), Property::restoreRequest);
}

void AppModel::cancelRestore() {
    set(&AppState::restoreRequest, std::nullopt, Property::restoreRequest);
}

// Restores what did not drift; what drifted is asked for first.
void AppModel::confirmRestore() {
    if (!state_.restoreRequest) return;
    const std::vector<Uuid> asked = state_.restoreRequest->entries;
    cancelRestore();
    const std::string what = restoringText(asked.size());
    change(what, {}, [this, what, asked] {
        const std::vector<JournalEntry> entries = deps_->journal->entries(asked);
        Change made;
        for (const JournalEntry& entry : entries)
            (asksForDrift(entry) ? made.drifted : made.others).push_back(entry.id);
        if (made.drifted.empty()) return restored(what, entries, {});
        made.driftMode = asked.size() == 1 ? DriftRequest::Mode::restoreEntry : DriftRequest::Mode::several;
        return made;
    });
}

bool AppModel::asksForDrift(const JournalEntry& entry) const {
    return entry.status == EntryStatus::applied && entry.kind == EntryKind::preference &&
           hasDrifted(entry, deps_->store);
}

void AppModel::openDrift(const Change& change, const std::optional<PendingApply>& pending) {
    // The open request is answered first; what is asked for now can be asked for again.
    if (state_.driftRequest) return fail(describe(EngineFailure(Drift{change.drifted.front()})));
    DriftRequest request{Uuid::random(),
                         change.driftedNow.size() == 1 ? change.driftMode : DriftRequest::Mode::several,
                         change.driftedNow, change.others};
    driftIsUndo_ = change.undo != Undo::none;
    set(&AppState::pendingAfterDrift, pending, Property::pendingAfterDrift);
    set(&AppState::driftRequest, std::move(request), Property::driftRequest);
}

void AppModel::cancelDrift() {
    set(&AppState::driftRequest, std::nullopt, Property::driftRequest);
    set(&AppState::pendingAfterDrift, std::nullopt, Property::pendingAfterDrift);
}

void AppModel::confirmDrift(const std::set<Uuid>& ticked) {
    if (!state_.driftRequest) return;
    const DriftRequest request = *state_.driftRequest;
    const std::optional<PendingApply> pending = state_.pendingAfterDrift;
    cancelDrift();
    std::vector<Uuid> entries = request.others;
    for (const DriftedEntry& drifted : request.entries)
        if (ticked.contains(drifted.entry.id)) entries.push_back(drifted.entry.id);
    const bool isAll = ticked.size() == request.entries.size();
    const Undo undo = !driftIsUndo_ ? Undo::none : isAll ? Undo::untilTheRest : Undo::part;
    if (!entries.empty()) restoreBeside(std::move(entries), ticked, pending, undo);
}

void AppModel::restoreBeside(std::vector<Uuid> ids, std::set<Uuid> confirmed,
                             const std::optional<PendingApply>& then, Undo undo) {
    const std::string what = restoringText(ids.size());
    change(what, {}, [this, what, ids = std::move(ids), confirmed = std::move(confirmed), then, undo] {
        Change made = restored(what, deps_->journal->entries(ids), confirmed);
        if (then) made.name = then->tweak.title;
        made.undo = undo;
        made.leadsToOriginals = then.has_value();
        if (!then || !made.failures.empty() || !made.drifted.empty()) return made;
        try {
            if (auto entry = carryOut(*then)) made.made.push_back(*std::move(entry));
        } catch (const EngineError& error) {
            made.failures.push_back(error.what());
        }
        return made;
    });
}

// On the lane: restores these, those that drifted only when they are confirmed.
AppModel::Change AppModel::restored(const std::string& what, const std::vector<JournalEntry>& entries,
                                    const std::set<Uuid>& confirmed) {
    Change made;
    made.name = entries.size() == 1 ? nameOf(entries.front()) : "restoring";
    made.agentsTouched = holdsAgent(entries);
    std::vector<Uuid> ids;
    for (const JournalEntry& entry : entries) {
        ids.push_back(entry.id);
        if (isAlreadyBack(entry, deps_->store)) made.alreadyBack.push_back(nameOf(entry));
    }
    const RestoreAllOutcome outcome =
        deps_->engine.restoreSelected(ids, confirmed, [&](std::size_t done, std::size_t total) {
            reportProgress(what, done, total);
            return !changes_.isEnding();
        });
    made.restored = deps_->journal->entries(outcome.restored);
    for (const auto& [id, message] : outcome.failed) made.failures.push_back(message);
    made.drifted = outcome.skippedDrifted;
    return made;
}

void AppModel::recover() {
    const std::string what = "Restoring interrupted changes";
    change(what, {}, [this, what, agents = holdsAgent(state_.interrupted)] {
        Change made;
        made.agentsTouched = agents;
        made.recoveryFailures.emplace();
        const RestoreAllOutcome outcome =
            deps_->engine.recoverInterrupted([&](std::size_t done, std::size_t total) {
                reportProgress(what, done, total);
                return !changes_.isEnding();
            });
        made.restored = deps_->journal->entries(outcome.restored);
        for (const auto& [id, message] : outcome.failed) made.recoveryFailures->push_back(message);
        return made;
    });
}

void AppModel::deferRecovery() {
    set(&AppState::recoveryDeferred, true, Property::recoveryDeferred);
}

}  // namespace brell
