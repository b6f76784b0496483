// Making changes: one at a time beside the main thread, each followed by a fresh look at everything.

#include <algorithm>
#include <functional>

#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Model/UndoProof.h"

namespace brell {

namespace {

std::vector<PrefValue> writtenValues(const JournalEntry& entry) {
    std::vector<PrefValue> values;
    for (const JournaledWrite& write : entry.writes)
        if (write.written.value) values.push_back(*write.written.value);
    return values;
}

std::vector<Uuid> idsOf(const std::vector<JournalEntry>& entries) {
    std::vector<Uuid> ids;
    for (const JournalEntry& entry : entries) ids.push_back(entry.id);
    return ids;
}

// What the keys of restored entries read as now, read back once more; those that were changed anew are left
// out.
UndoProof proofOf(const std::vector<JournalEntry>& restored, const std::vector<JournalEntry>& made,
                  PreferenceStore& store) {
    UndoProof proof;
    std::set<std::string_view> changedAnew;
    for (const JournalEntry& entry : made) changedAnew.insert(entry.tweakID);
    for (const JournalEntry& entry : restored) {
        if (changedAnew.contains(entry.tweakID)) continue;
        for (KeyProof& key : proveUndo(entry, store)) proof.push_back(std::move(key));
    }
    return proof;
}

std::string alreadyBackText(const std::vector<std::string>& names) {
    std::vector<std::string> sentences;
    for (const std::string& name : names) sentences.push_back(name + " was already back as it was.");
    return sentences.empty() ? std::string() : " " + firstOf(sentences, " ");
}

bool nothingIsStored(const Tweak& tweak, PreferenceStore& store) {
    return std::all_of(tweak.writes.begin(), tweak.writes.end(), [&](const Write& write) {
        return readIfPossible(write.key, store) == StoredValue::absent();
    });
}

// Nothing when a key can't be read: what was done is done all the same.
std::optional<std::string> renderedNow(const Tweak& tweak, PreferenceStore& store) {
    std::vector<StoredValue> values;
    for (const Write& write : tweak.writes) {
        auto value = readIfPossible(write.key, store);
        if (!value) return std::nullopt;
        values.push_back(*std::move(value));
    }
    return renderedTogether(values);
}

}  // namespace

void AppModel::apply(const std::string& tweakID, std::optional<std::vector<PrefValue>> values,
                     std::optional<std::string> choiceID) {
    const Tweak* tweak = catalog().tweak(tweakID);
    if (!tweak) return fail("There is no tweak " + tweakID + ".");
    changeTo({*tweak, values ? std::move(*values) : tweak->targets(), std::move(choiceID)},
             "Applying " + tweak->title);
}

void AppModel::useSystemDefault(const std::string& tweakID) {
    const Tweak* tweak = catalog().tweak(tweakID);
    if (!tweak) return fail("There is no tweak " + tweakID + ".");
    changeTo({*tweak, {}, std::nullopt, true}, "Resetting " + tweak->title);
}

// An active change is undone first, and made again when the new one fails.
void AppModel::changeTo(const PendingApply& wish, std::string what) {
    const Job job = [this, wish] {
        Change made;
        made.name = wish.tweak.title;
        const auto active = deps_->journal->activeEntry(wish.tweak.id);
        if (active) restoreFirst(made, *active);
        try {
            if (auto entry = carryOut(wish)) made.made.push_back(*std::move(entry));
        } catch (const EngineError& error) {
            if (!active) throw;
            made.failures.push_back(error.what());
            addAgain(made, *active);  // the user still has what was there before
        }
        return made;
    };
    change(std::move(what), {wish.tweak.id}, job, wish);
}

// On the lane; nothing when there is nothing to do.
std::optional<JournalEntry> AppModel::carryOut(const PendingApply& wish) {
    const Tweak* tweak = catalog().tweak(wish.tweak.id);
    if (!tweak) return std::nullopt;
    if (!wish.usesSystemDefault) return deps_->engine.apply(*tweak, wish.values, wish.choiceID);
    if (nothingIsStored(*tweak, deps_->store)) return std::nullopt;
    return deps_->engine.resetToDefault(*tweak);
}

void AppModel::applyChoice(const std::string& tweakID, const std::string& choiceID) {
    const Tweak* tweak = catalog().tweak(tweakID);
    const auto* kind = tweak ? std::get_if<ChoiceKind>(&tweak->kind) : nullptr;
    if (!kind) return fail("There is no choice of " + tweakID + ".");
    for (const Choice& choice : kind->choices)
        if (choice.id == choiceID) return apply(tweakID, choice.values, choice.id);
    fail(tweak->title + " has no choice " + choiceID + ".");
}

void AppModel::turnOff(const std::string& tweakID) {
    const Tweak* tweak = catalog().tweak(tweakID);
    if (!tweak) return fail("There is no tweak " + tweakID + ".");
    // What a second click means is known only when the first one is done.
    if (isChanging(tweakID)) return;
    change("Turning off " + tweak->title, {tweakID}, [this, tweak] {
        Change made;
        made.name = tweak->title;
        if (const auto active = deps_->journal->activeEntry(tweak->id))
            restoreFirst(made, *active);
        else
            made.made.push_back(deps_->engine.turnOff(*tweak, false));
        return made;
    });
}

// What was made is restored, what was restored is made again. What drifted meanwhile is asked for first; then
// the undo goes on.
void AppModel::undoLast() {
    if (state_.undoStack.empty() || state_.changeActivity) return;
    const SessionChange last = state_.undoStack.back();
    change("Undoing " + last.name, {}, [this, last] {
        Change made;
        made.name = last.name;
        made.undo = Undo::whole;
        for (auto id = last.made.rbegin(); id != last.made.rend(); ++id) undoEntry(made, *id);
        if (!made.drifted.empty() || !made.failures.empty()) return made;
        for (const Uuid& id : last.restored) redoEntry(made, id);
        return made;
    });
}

// On the lane.
void AppModel::undoEntry(Change& change, const Uuid& id) try {
    const auto entry = deps_->journal->entry(id);
    if (entry && entry->isActive()) restoreFirst(change, *entry);
} catch (const EngineError& error) {
    if (std::holds_alternative<Drift>(error.failure()))
        change.drifted.push_back(id);
    else
        change.failures.push_back(error.what());
} catch (const std::exception& error) {
    change.failures.push_back(error.what());
}

// On the lane. A tweak that was changed anew since stays as it is.
void AppModel::redoEntry(Change& change, const Uuid& id) try {
    const auto entry = deps_->journal->entry(id);
    if (!entry || deps_->journal->activeEntry(entry->tweakID)) return;
    change.made.push_back(makeAgain(*entry));
    change.remade.emplace_back(id, change.made.back().id);
} catch (const std::exception& error) {
    change.failures.push_back(error.what());
}

void AppModel::applyAgain(const std::vector<Uuid>& entries) {
    const std::string what = "Applying again what was reset";
    change(what, {}, [this, what, entries] {
        Change made;
        made.name = "what was applied again";
        made.leadsToOriginals = true;
        for (const Uuid& id : entries) {
            if (changes_.isEnding()) break;
            reportProgress(what, made.made.size(), entries.size());
            try {
                const auto entry = deps_->journal->entry(id);
                if (!entry || !entry->isActive()) continue;
                made.agentsTouched = made.agentsTouched || entry->agent;
                made.restored.push_back(deps_->engine.restore(id, true));
                made.made.push_back(makeAgain(*entry));
            } catch (const std::exception& error) {
                made.failures.push_back(error.what());
            }
        }
        return made;
    });
}

// On the lane. A change that reads as undone already is closed, and that is told.
void AppModel::restoreFirst(Change& change, const JournalEntry& active) {
    const bool alreadyBack = isAlreadyBack(active, deps_->store);
    change.agentsTouched = change.agentsTouched || active.agent;
    change.restored.push_back(deps_->engine.restore(active.id, false));
    if (alreadyBack) change.alreadyBack.push_back(nameOf(active));
}

// On the lane. A failure is told behind those that led here.
void AppModel::addAgain(Change& change, const JournalEntry& entry) try {
    change.made.push_back(makeAgain(entry));
} catch (const std::exception& error) {
    change.failures.push_back(error.what());
}

// On the lane: makes what a restored entry had made.
JournalEntry AppModel::makeAgain(const JournalEntry& entry) {
    if (entry.agent) {
        const LaunchAgentRecord agent{LaunchAgentPlist::read(entry.agent->plistPath), AgentScope::user,
                                      entry.agent->override, LoadedState::unknown()};
        return AgentToggle::brellTurnedOn(*entry.agent) ? deps_->toggle.turnOn(agent)
                                                        : deps_->toggle.turnOff(agent);
    }
    const Tweak* tweak = catalog().tweak(entry.tweakID);
    if (!tweak) throw EngineError(Refused{"There is no tweak " + entry.tweakID + " any more."});
    switch (entry.direction) {
        case EntryDirection::on: return deps_->engine.apply(*tweak, writtenValues(entry), entry.choiceID);
        case EntryDirection::resetToDefault: break;
    }
    return deps_->engine.resetToDefault(*tweak);
}

void AppModel::change(std::string what, std::vector<std::string> tweakIDs, Job job,
                      std::optional<PendingApply> ifDrifted) {
    if (!state_.changeActivity) set(&AppState::changeActivity, Activity{what}, Property::changeActivity);
    changing_.insert(tweakIDs.begin(), tweakIDs.end());
    runCounted(
        changes_, changesUnderWay_,
        [this, what = std::move(what), job = std::move(job)] {
            reportProgress(what, 0, 0);
            return carriedOut(job);
        },
        [this, tweakIDs = std::move(tweakIDs),
         ifDrifted = std::move(ifDrifted)](const JobResult<Change>& result) {
            for (const std::string& id : tweakIDs) changing_.erase(changing_.find(id));
            finishChange(result, ifDrifted);
        });
}

// On the lane: the job, and what can be read of its outcome while nothing else changes.
AppModel::Change AppModel::carriedOut(const Job& job) const {
    Change change;
    try {
        change = job();
    } catch (const EngineError& error) {
        const auto* drift = std::get_if<Drift>(&error.failure());
        if (!drift) throw;
        change.drifted.push_back(drift->entry);
    }
    const UndoProof proof = proofOf(change.restored, change.made, deps_->store);
    if (!proof.empty()) change.proof = sentence(proof);
    change.isProved = std::all_of(proof.begin(), proof.end(), std::mem_fn(&KeyProof::isAsBefore));
    change.proof += alreadyBackText(change.alreadyBack);
    readDrift(change);
    for (const auto* entries : {&change.restored, &change.made})
        for (const JournalEntry& entry : *entries)
            if (const Tweak* tweak = catalog().tweak(entry.tweakID))
                if (auto now = renderedNow(*tweak, deps_->store))
                    change.touched.insert_or_assign(tweak->id, *std::move(now));
    return change;
}

// On the lane: what the keys hold that are asked for.
void AppModel::readDrift(Change& change) const try {
    if (change.drifted.empty()) return;
    for (const JournalEntry& entry : deps_->journal->entries(change.drifted))
        change.driftedNow.push_back(driftedEntry(entry, deps_->store));
} catch (const JournalError& error) {
    change.failures.push_back(error.what());
}

void AppModel::reportProgress(std::string what, std::size_t done, std::size_t total) {
    if (!changePace_.isDue(what)) return;
    changes_.report([this, activity = Activity{std::move(what), done, total}] {
        set(&AppState::changeActivity, activity, Property::changeActivity);
    });
}

void AppModel::finishChange(const JobResult<Change>& result, const std::optional<PendingApply>& ifDrifted) {
    const Change change = result.value.value_or(Change{});
    ++changesFinished_;
    dropInterrupted(change.restored);
    if (change.recoveryFailures)
        set(&AppState::recoveryFailures, *change.recoveryFailures, Property::recoveryFailures);
    if (changesUnderWay_ == 0) set(&AppState::changeActivity, std::nullopt, Property::changeActivity);
    if (!result.value) fail(result.error);
    if (!change.failures.empty()) fail(firstOf(change.failures, " "));
    if (const auto trouble = deps_->engine.untoldScriptTrouble())
        fail(state_.errorMessage ? *state_.errorMessage + " " + *trouble : *trouble);
    noteForUndo(change);
    notePendingRelaunches(change);
    showProof(change);
    if (!change.report.empty()) set(&AppState::presetReport, change.report, Property::presetReport);
    refreshAll();
    if (change.agentsTouched) loadLoginItems();
    if (!change.driftedNow.empty()) openDrift(change, ifDrifted);
    if (change.undo == Undo::untilTheRest && change.failures.empty() && change.drifted.empty()) undoLast();
}

// What was put back is interrupted no more, and is not to be asked for until the next look at everything.
void AppModel::dropInterrupted(const std::vector<JournalEntry>& restored) {
    const std::vector<Uuid> ids = idsOf(restored);
    const std::set<Uuid> back(ids.begin(), ids.end());
    std::vector<JournalEntry> left = state_.interrupted;
    std::erase_if(left, [&](const JournalEntry& entry) { return back.contains(entry.id); });
    set(&AppState::interrupted, std::move(left), Property::interrupted);
}

// The proof of an earlier undo says nothing about this change.
void AppModel::showProof(const Change& change) {
    state_.undoIsComplete = change.isProved;
    std::optional<std::string> proof;
    if (!change.proof.empty()) proof = change.proof;
    set(&AppState::undoProof, std::move(proof), Property::undoProof);
}

void AppModel::noteForUndo(const Change& change) {
    if (change.recoveryFailures) return;
    std::vector<SessionChange> stack = state_.undoStack;
    const std::map<Uuid, Uuid> remade(change.remade.begin(), change.remade.end());
    for (SessionChange& action : stack)
        for (Uuid& id : action.made)
            if (const auto fresh = remade.find(id); fresh != remade.end()) id = fresh->second;
    const bool isFinished = change.drifted.empty() && change.failures.empty();
    if (change.undo == Undo::whole && isFinished && !stack.empty()) stack.pop_back();
    if (change.undo == Undo::none && !(change.made.empty() && change.restored.empty()))
        stack.push_back({change.name, idsOf(change.made),
                         change.leadsToOriginals ? std::vector<Uuid>() : idsOf(change.restored)});
    set(&AppState::undoStack, std::move(stack), Property::undoStack);
}

// An action whose changes were undone in another way since can't be undone a second time. One whose changes a
// later action replaced can, after that.
void AppModel::pruneUndo() {
    std::set<Uuid> wanted;
    for (const JournalEntry& entry : state_.entries)
        if (entry.isActive()) wanted.insert(entry.id);
    std::vector<SessionChange> stack = state_.undoStack;
    for (std::size_t i = stack.size(); i-- > 0;) {
        const std::vector<Uuid>& made = stack[i].made;
        const bool isUndone = !made.empty() && std::none_of(made.begin(), made.end(), [&](const Uuid& id) {
            return wanted.contains(id);
        });
        if (isUndone)
            stack.erase(stack.begin() + static_cast<std::ptrdiff_t>(i));
        else
            wanted.insert(stack[i].restored.begin(), stack[i].restored.end());
    }
    set(&AppState::undoStack, std::move(stack), Property::undoStack);
}

}  // namespace brell
