// What putting changes back, or making them again, would do; and which agents others switched since.

#include <exception>
#include <optional>
#include <stdexcept>

#include "BrellCore/Engine/Drift.h"
#include "BrellCore/Preferences/PreferenceStore.h"
#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Dependencies.h"
#include "CorvaneBrell/Model/ChangeWork.h"
#include "CorvaneBrell/Model/ReadingWork.h"

namespace brell {

namespace {

// What launchd says of several agents. The overrides, which tell of all of them, are asked for once, also
// where it does not answer.
class AgentStates {
public:
    explicit AgentStates(const AgentToggle& toggle) : toggle_(toggle) {}

    AgentState of(const std::string& label) {
        if (failure_) std::rethrow_exception(failure_);
        if (!overrides_) try {
                overrides_ = toggle_.overrides();
            } catch (...) {
                failure_ = std::current_exception();
                throw;
            }
        return toggle_.currentState(label, *overrides_);
    }

    // The step says what is done. Gives the reason where that is nothing.
    std::optional<std::string> describe(RestoreStep& step, const AgentCapture& before) try {
        step.lines = toggle_.previewRestore(before);
        auto why = toggle_.whyNotOwn(before);
        if (!why) why = toggle_.whyNotRestored(before, of(before.label));
        if (why) step.lines = {"No command: " + *why};
        return why;
    } catch (const std::exception& error) {
        step.words += std::string("\nNot known whether it can be put back: ") + error.what();
        return std::nullopt;
    }

private:
    const AgentToggle& toggle_;
    std::optional<AgentOverrides> overrides_;
    std::exception_ptr failure_;
};

}  // namespace

std::vector<DriftedEntry> ReadingWork::driftedAgents() {
    std::vector<DriftedEntry> drifted;
    std::vector<JournalEntry> switched = deps_.journal->active();
    std::erase_if(switched, [](const JournalEntry& entry) { return !entry.agent; });
    AgentStates states(deps_.toggle);
    for (std::size_t i = 0; i < switched.size() && !progress_.isEnding(); ++i) {
        progress_.tell("Asking launchd about what Brell switched", i, switched.size());
        const AgentCapture& before = *switched[i].agent;
        std::optional<DriftedEntry> drift;
        std::optional<std::string> refusal;
        try {
            refusal = deps_.toggle.whyNotOwn(before);  // which needs no launchd
            const AgentState now = states.of(before.label);
            drift = driftedAgent(switched[i], now);
            if (!refusal) refusal = deps_.toggle.whyNotRestored(before, now);
        } catch (const std::exception&) {
            // Not known to have drifted; the page shows what launchd says of the others.
        }
        if (!drift && !refusal) continue;
        drifted.push_back(drift ? *std::move(drift) : DriftedEntry{switched[i], {}});
        drifted.back().refusal = std::move(refusal);
    }
    return drifted;
}

RestoreRequest ReadingWork::restoring(const std::string& title, const std::vector<Uuid>& changes) {
    RestoreRequest request{Uuid::random(), title, {}, {}};
    addRestores(request, changes);
    // Unless some of it stays, because it is refused.
    const std::size_t asked = request.changes.others.size() + request.changes.entries.size();
    request.changes.isEverything = asked == deps_.journal->active().size();
    if (request.isEmpty()) throw std::runtime_error(nothingToRestore);
    return request;
}

RestoreRequest ReadingWork::undoing(const SessionChange& action) {
    RestoreRequest request{Uuid::random(), "Undo “" + action.name + "”?", {}, {.undoing = action}};
    addRestores(request, action.made);
    for (const JournalEntry& entry : deps_.journal->entries(action.restored)) {
        const auto active = deps_.journal->activeEntry(entry.tweakID);
        const bool isChangedAnew =
            active && std::find(action.made.begin(), action.made.end(), active->id) == action.made.end();
        if (isChangedAnew) continue;
        std::vector<std::string> commands;
        if (const auto& agent = entry.agent)
            commands =
                deps_.toggle
                    .preview(switchedAgent(deps_.toggle.folder(), *agent), AgentCommands::switchOf(*agent))
                    .commands;
        request.steps.push_back(makingAgain(entry, std::move(commands)));
    }
    return request;
}

RecoveryCommands ReadingWork::recovering(const std::vector<JournalEntry>& agents) {
    RecoveryCommands commands;
    for (const JournalEntry& entry : agents)
        commands.emplace(entry.id, PuttingBack{deps_.toggle.previewRestore(*entry.agent),
                                               deps_.toggle.whyNotOwn(*entry.agent)});
    return commands;
}

// Drift is what the user has to answer for; what holds its original again is nobody else's.
void ReadingWork::addRestores(RestoreRequest& request, const std::vector<Uuid>& changes) {
    const auto preferences = deps_.store.reader();
    AgentStates states(deps_.toggle);
    for (const JournalEntry& entry : deps_.journal->entries(changes)) {
        if (!entry.isActive() || progress_.isEnding()) continue;
        progress_.tell(request.steps.size() + request.changes.entries.size(), changes.size());
        DriftedEntry now = driftedEntry(entry, readKeys(entry, *preferences), deps_.catalog);
        if (const auto elsewhere =
                cameFromElsewhere(entry, deps_.machine.home, deps_.machine.osVersion.text()))
            now.words += "\n" + *elsewhere;
        if (entry.kind == EntryKind::preference && needsConsent(entry, *preferences)) {
            request.changes.entries.push_back(std::move(now));
            continue;
        }
        RestoreStep step{deps_.titles.of(entry), std::move(now.words), putBackLines(entry),
                         entry.agent.has_value()};
        // Of a refused one the step only says that it stays.
        const auto refusal = entry.agent ? states.describe(step, *entry.agent) : whyOnlyKept(entry);
        if (!refusal) request.changes.others.push_back(entry.id);
        request.steps.push_back(std::move(step));
    }
}

// An agent that can't be put back can't be made again either.
RestoreRequest ReadingWork::applyingAgain(const std::vector<DriftedEntry>& drifted) {
    RestoreRequest request{Uuid::random(), "Apply again what was changed outside Brell?", {}, {}};
    AgentStates states(deps_.toggle);
    std::vector<std::string> refusals;
    for (const DriftedEntry& one : drifted) {
        const auto& agent = one.entry.agent;
        RestoreStep step = makingAgain(one.entry, {});
        if (auto refusal = agent ? states.describe(step, *agent) : std::nullopt) {
            step.words = "Not applied again";
            refusals.push_back(step.title + " can't be applied again. " + *refusal);
        } else {
            request.again.push_back(one);
            const auto again = agent ? deps_.toggle.previewAgain(*agent) : std::vector<std::string>();
            step.lines.insert(step.lines.end(), again.begin(), again.end());
        }
        request.steps.push_back(std::move(step));
    }
    if (request.again.empty()) throw std::runtime_error(firstOf(refusals, " "));
    return request;
}

// The commands are those of an agent.
RestoreStep ReadingWork::makingAgain(const JournalEntry& entry, std::vector<std::string> commands) const {
    return {deps_.titles.of(entry), "Again as it was changed before",
            entry.agent ? std::move(commands) : againLines(entry), entry.agent.has_value()};
}

}  // namespace brell
