// LaunchAgents switched, also once more.

#include <stdexcept>

#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Dependencies.h"
#include "CorvaneBrell/Model/ChangeWork.h"

namespace fs = std::filesystem;

namespace brell {

// The toggle would only miss a label.
void checkJobFile(const LaunchAgentRecord& agent) {
    std::error_code unknown;
    if (fs::symlink_status(agent.plist.path, unknown).type() != fs::file_type::not_found) return;
    throw std::runtime_error(excerpt(agent.plist.path, mostOfASentence) +
                             " is gone: it was removed, moved or renamed since the login items were read. " +
                             excerpt(agent.label().value_or("It")) + " is not changed.");
}

LaunchAgentRecord switchedAgent(const AgentFolder& folder, const AgentCapture& before) {
    const auto file = folder.jobFile(before.label, before.plistPath);
    if (!file)
        throw std::runtime_error("No file in your LaunchAgents folder has the label " +
                                 excerpt(before.label) + " any more, so it can't be switched.");
    return {LaunchAgentPlist::read(*file), AgentScope::user, before.override, LoadedState::unknown()};
}

ChangeOutcome ChangeWork::switchAgents(const AgentConfirmRequest& request) {
    ChangeOutcome outcome;
    outcome.agentsTouched = true;
    for (const LaunchAgentRecord& agent : request.agents) {
        if (progress_.isEnding()) break;
        progress_.tell(outcome.made.size() + outcome.restored.size(), request.agents.size());
        tryStep(outcome.failures, [&] {
            checkJobFile(agent);
            JournalEntry entry = request.turningOn ? deps_.toggle.turnOn(agent) : deps_.toggle.turnOff(agent);
            (entry.status == EntryStatus::restored ? outcome.restored : outcome.made)
                .push_back(std::move(entry));
        });
    }
    const std::vector<JournalEntry>& switched = outcome.made.empty() ? outcome.restored : outcome.made;
    outcome.undo.done = actionOf(outcome, (request.turningOn ? "Turn On " : "Turn Off ") + namesOf(switched));
    return finished(std::move(outcome));
}

std::string ChangeWork::namesOf(const std::vector<JournalEntry>& switched) {
    if (switched.size() != 1) return counted(switched.size(), "Item", "Items");
    deps_.titles.learn(switched.front());
    return deps_.titles.of(switched.front());
}

JournalEntry ChangeWork::switchedAgain(const AgentCapture& before) {
    const LaunchAgentRecord agent = switchedAgent(deps_.toggle.folder(), before);
    return AgentCommands::switchOf(before) == AgentSwitch::on ? deps_.toggle.turnOn(agent)
                                                              : deps_.toggle.turnOff(agent);
}

}  // namespace brell
