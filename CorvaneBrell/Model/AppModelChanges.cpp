// Changing and undoing: what the user asks for, the questions before it, and what it came to.

#include <algorithm>

#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Dependencies.h"
#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Model/ValueWords.h"

namespace brell {

namespace {

constexpr const char* readingRestore = "Reading what would be put back";
constexpr const char* applyingAgain = "Applying again what was reset";

std::string restoringText(std::size_t changes) {
    return changes == 1 ? "Restoring a change" : "Restoring changes";
}

}  // namespace

template <class Job, class... Arguments>
void AppModel::change(std::string what, std::vector<std::string> tweakIDs, Job job, Arguments... arguments) {
    if (state_.isLeaving) return;
    changing_.insert(tweakIDs.begin(), tweakIDs.end());
    const auto done = [this, tweakIDs = std::move(tweakIDs)](const JobResult<ChangeOutcome>& result) {
        for (const std::string& id : tweakIDs) changing_.erase(changing_.find(id));
        ChangeOutcome outcome = result.value.value_or(ChangeOutcome());
        if (!result.value) outcome.failures.push_back(result.error);
        finishChange(outcome);
    };
    changes_.run(std::move(what), job, done, std::move(arguments)...);
}

void AppModel::apply(const std::string& tweakID, std::optional<std::vector<PrefValue>> values,
                     std::optional<std::string> choiceID) {
    const Tweak* tweak = catalog().tweak(tweakID);
    if (!tweak) return fail("There is no tweak " + tweakID + ".");
    change("Applying " + tweak->title, {tweakID}, &ChangeWork::apply,
           PendingApply{*tweak, values ? std::move(*values) : tweak->targets(), std::move(choiceID)});
}

void AppModel::useSystemDefault(const std::string& tweakID) {
    const Tweak* tweak = catalog().tweak(tweakID);
    if (!tweak) return fail("There is no tweak " + tweakID + ".");
    change("Resetting " + tweak->title, {tweakID}, &ChangeWork::apply,
           PendingApply{*tweak, {}, std::nullopt, true});
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
    // The meaning of a second click is known only when the first one is done.
    if (isChanging(tweakID)) return;
    change("Turning off " + tweak->title, {tweakID}, &ChangeWork::turnOff, tweakID);
}

void AppModel::restore(const std::string& tweakID) {
    if (isChanging(tweakID)) return;
    for (const JournalEntry& entry : state_.entries)
        if (entry.tweakID == tweakID && entry.isActive())
            return change(restoringText(1), {tweakID}, &ChangeWork::restore, entry.id);
}

void AppModel::askRestore(const Uuid& entryID) {
    for (const JournalEntry& entry : state_.entries)
        if (entry.id == entryID && entry.isActive())
            return askRestoreOf("Restore “" + titles().of(entry) + "”?", {entry});
    fail(nothingToRestore);
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
            return askRestoreOf("Restore everything since “" + titles().of(entry) + "”?", later);
    }
    fail(nothingToRestore);
}

void AppModel::askRestoreOf(const std::string& title, const std::vector<JournalEntry>& entries) {
    if (entries.empty()) return;
    const auto done = [this](JobResult<RestoreRequest> request) { showRestore(std::move(request)); };
    questions_.run(readingRestore, &ReadingWork::restoring, done, title, idsOf(entries));
}

// Only one is open at a time; a second can be asked for again.
void AppModel::showRestore(JobResult<RestoreRequest> request) {
    if (!request.value) {
        refreshAll();  // what was shown may be so no more
        return fail(request.error);
    }
    if (!state_.restoreRequest) set(&AppState::restoreRequest, std::move(*request.value), Topic::question);
}

void AppModel::cancelRestore() {
    set(&AppState::restoreRequest, std::nullopt, Topic::question);
}

void AppModel::confirmRestore(const std::set<Uuid>& ticked) {
    if (!state_.restoreRequest) return;
    const RestoreRequest request = *state_.restoreRequest;
    cancelRestore();
    if (!request.again.empty()) return change(applyingAgain, {}, &ChangeWork::applyAgain, request.again);
    restoreAnswered(request.changes, ticked);
}

void AppModel::cancelDrift() {
    set(&AppState::driftRequest, std::nullopt, Topic::question);
}

void AppModel::confirmDrift(const std::set<Uuid>& ticked) {
    if (!state_.driftRequest) return;
    const DriftRequest request = *state_.driftRequest;
    cancelDrift();
    restoreAnswered(request, ticked);
}

void AppModel::restoreAnswered(const DriftRequest& changes, const std::set<Uuid>& ticked) {
    const auto count = changes.others.size() + ticked.size();
    if (count == 0 && !changes.undoing) return;
    const std::string what = changes.undoing ? "Undoing " + changes.undoing->name : restoringText(count);
    change(what, {}, &ChangeWork::restoreConfirmed, changes, ticked);
}

void AppModel::undoLast() {
    const SessionChange* last = state_.undo.next();
    if (!last || state_.changeActivity) return;
    if (!last->runsCommands) return change("Undoing " + last->name, {}, &ChangeWork::undoAction, *last);
    const auto done = [this, action = *last](JobResult<RestoreRequest> request) {
        if (!request.value || !request.value->isEmpty()) return showRestore(std::move(request));
        set(&AppState::undo, state_.undo.after({{}, action, {}}), Topic::journal);
        fail(nothingLeft(action));
    };
    questions_.run(readingRestore, &ReadingWork::undoing, done, *last);
}

void AppModel::keepTheirs(const std::vector<Uuid>& entries) {
    change("Keeping what others set", {}, &ChangeWork::keepTheirs, entries);
}

// What runs commands shows them first, as the change did.
void AppModel::applyAgain(const std::vector<Uuid>& entries) {
    std::vector<DriftedEntry> shown;
    for (const auto* drifted : {&state_.drifted, &state_.driftedAgents})
        std::copy_if(drifted->begin(), drifted->end(), std::back_inserter(shown), [&](const auto& one) {
            return std::find(entries.begin(), entries.end(), one.entry.id) != entries.end();
        });
    if (std::none_of(shown.begin(), shown.end(), [](const auto& one) { return one.entry.agent; }))
        return change(applyingAgain, {}, &ChangeWork::applyAgain, std::move(shown));
    const auto done = [this](JobResult<RestoreRequest> request) { showRestore(std::move(request)); };
    questions_.run("Reading what would be applied again", &ReadingWork::applyingAgain, done,
                   std::move(shown));
}

// What runs commands shows them first.
void AppModel::askRecovery() {
    if (!hasAgent(state_.interrupted)) return recover({});
    put(&AppState::recoveryCommands, {});  // a file may have been moved since
    set(&AppState::recoveryDeferred, false, Topic::question);
    readRecovery();
}

void AppModel::recover(const RecoveryCommands& shown) {
    change("Restoring interrupted changes", {}, &ChangeWork::recover, shown);
}

void AppModel::deferRecovery() {
    set(&AppState::recoveryDeferred, true, Topic::question);
}

void AppModel::confirmAgents() {
    if (!state_.agentConfirm) return;
    const AgentConfirmRequest request = *state_.agentConfirm;
    cancelAgents();
    const std::string begun = "Turn";  // as the title does
    change("Turning" + request.title.substr(begun.size()), {}, &ChangeWork::switchAgents, request);
}

void AppModel::confirmPreset() {
    if (!state_.presetRequest) return;
    const PresetPlan plan = state_.presetRequest->plan;
    cancelPreset();
    set(&AppState::presetReport, {}, Topic::question);  // of an earlier one
    change("Applying " + plan.preset.name, plan.toApply(), &ChangeWork::applyPreset, plan);
}

void AppModel::finishChange(const ChangeOutcome& outcome) {
    ++changesFinished_;
    dropInterrupted(outcome.restored);
    if (outcome.recoveryFailures) {
        put(&AppState::recoveryCommands, {});  // what is asked for again is read again first
        set(&AppState::recoveryFailures, *outcome.recoveryFailures, Topic::notices);
    }
    // Several, where what follows a failure fails, too.
    std::vector<std::string> failures = outcome.failures;
    if (const std::string whyNot = noteRelaunches(outcome); !whyNot.empty()) failures.push_back(whyNot);
    if (!failures.empty()) fail(firstOf(failures, " "));
    if (const auto trouble = deps_->engine.untoldScriptTrouble())
        set(&AppState::scriptNews, trouble, Topic::notices);
    set(&AppState::undo, state_.undo.after(outcome.undo), Topic::journal);
    // The proof of an earlier undo says nothing about this change.
    set(&AppState::undoProof, outcome.proof, Topic::notices);
    if (!outcome.report.empty()) set(&AppState::presetReport, outcome.report, Topic::question);
    refreshAll();
    if (outcome.agentsTouched) readLoginItems({false, tasks_});
    if (state_.leavingRequest) readLeaving();
    if (outcome.question) askDrift(*outcome.question);
}

void AppModel::askLeaving() {
    if (const auto& reason = state_.startupError ? state_.startupError : state_.journalError)
        return fail("Without its journal Brell can't tell what is still changed, so it can't be left now. " +
                    *reason);
    if (const auto why = whyNothingReal()) return fail("There is nothing to leave. " + *why);
    refreshAll();  // what is active now is also what is restored then
    loadAgentDrift();
    readLeaving();
}

// What was concerned before still is.
void AppModel::readLeaving() {
    std::vector<Uuid> concerned;
    if (state_.leavingRequest) concerned = state_.leavingRequest->concerned;
    cancelLeaving();
    const auto done = [this](JobResult<LeavingRequest> request) {
        if (!request.value) return fail(request.error);
        set(&AppState::leavingRequest, std::move(*request.value), Topic::question);
    };
    refreshes_.run("Reading what is changed", &ReadingWork::leaving, done, std::move(concerned));
}

void AppModel::confirmLeaving(const TakeAway& toTrash) {
    if (!state_.leavingRequest || !state_.leavingRequest->mayGoToTrash()) return;
    cancelLeaving();
    set(&AppState::isLeaving, true, Topic::journal);
    const auto done = [this](const JobResult<bool>& hadFolder) {
        if (!hadFolder.value) {
            set(&AppState::isLeaving, false, Topic::journal);
            return fail(hadFolder.error);
        }
        // Only now: with the journal in its place these are still of use.
        const auto whyNotCleared = own_.removeAll();
        const std::string folder =
            *hadFolder.value ? pathWords(journalDirectory_.string(), catalog().home()) : "";
        set(&AppState::leavingReport, leavingReport(folder, whyNotCleared), Topic::question);
    };
    changes_.run("Moving Brell's files to the Trash", &ChangeWork::leave, done, toTrash);
}

void AppModel::cancelLeaving() {
    set(&AppState::leavingRequest, std::nullopt, Topic::question);
}

// A change that was put back is interrupted no more, and is not to be asked for until everything is read
// again.
void AppModel::dropInterrupted(const std::vector<JournalEntry>& restored) {
    std::set<Uuid> back;
    for (const JournalEntry& entry : restored) back.insert(entry.id);
    std::vector<JournalEntry> left = state_.interrupted;
    std::erase_if(left, [&](const JournalEntry& entry) { return back.contains(entry.id); });
    set(&AppState::interrupted, std::move(left), Topic::journal);
}

void AppModel::askDrift(const DriftRequest& request) {
    // The open request is answered first; what is asked for now can be asked for again.
    if (state_.driftRequest) return fail(describe(EngineFailure(Drift{request.entries.front().entry.id})));
    set(&AppState::driftRequest, request, Topic::question);
}

}  // namespace brell
