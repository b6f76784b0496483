// The commands that launchctl is given for a LaunchAgent, said once: the toggle runs them, the confirmation
// and the text for Terminal show them, the restore script prints them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "BrellCore/Journal/AgentCapture.h"

namespace brell {

enum class AgentSwitch { off, on };

struct AgentCommand {
    enum class Verb { bootout, enable, disable, bootstrap };
    enum class When { always, ifLoaded, ifNotLoaded };

    Verb verb;
    When when = When::always;
    bool operator==(const AgentCommand&) const = default;
};

// The state that launchd shows once all is done. An override of "enabled" and none are the same to it.
struct AgentTarget {
    bool isDisabled;
    bool isLoaded;
    bool operator==(const AgentTarget&) const = default;
};

// The commands that are run, in this order, and where they lead.
struct AgentPlan {
    std::vector<AgentCommand> commands;
    AgentTarget target;
    bool operator==(const AgentPlan&) const = default;
};

namespace AgentCommands {

// The launchd domain of a user's own agents: "gui/501".
std::string guiDomain(std::uint32_t uid);

// The only labels that are ever passed to launchctl: 1 to 200 letters, digits, dots, underscores and hyphens.
bool isPlainLabel(std::string_view label);

// How the change with this capture switched its agent.
AgentSwitch switchOf(const AgentCapture& before);

AgentPlan switching(AgentSwitch direction);
// The switch that a change with this capture was, and its undo.
AgentPlan making(const AgentCapture& before);
AgentPlan undoing(const AgentCapture& before);

// The same for the restore script, which can't ask launchd and takes no job away that runs: the override
// comes first, and a bootstrap of an agent that is loaded already, or was disabled, does nothing.
std::vector<AgentCommand> undoingByScript(const AgentCapture& before);

// One command for a POSIX shell, which puts in its user's own number. quote makes a word of the shell of any
// text.
std::string shellLine(AgentCommand::Verb verb, const AgentCapture& agent,
                      const std::function<std::string(std::string_view)>& quote);

}  // namespace AgentCommands

}  // namespace brell
