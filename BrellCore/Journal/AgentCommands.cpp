#include "BrellCore/Journal/AgentCommands.h"

namespace brell {

namespace {

using Verb = AgentCommand::Verb;
using When = AgentCommand::When;

constexpr std::string_view plainCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-";
constexpr std::size_t mostLabelCharacters = 200;

std::string_view wordOf(Verb verb) {
    switch (verb) {
        case Verb::bootout: return "bootout";
        case Verb::enable: return "enable";
        case Verb::disable: return "disable";
        case Verb::bootstrap: break;
    }
    return "bootstrap";
}

std::vector<AgentCommand> commandsUndoing(const AgentCapture& before) {
    if (before.turnedOn() && before.wasLoaded)
        // launchd loads none that is disabled.
        return {{Verb::enable, When::ifNotLoaded}, {Verb::bootstrap, When::ifNotLoaded}, {Verb::disable}};
    if (before.turnedOn()) return {{Verb::bootout}, {Verb::disable}};
    if (before.wasLoaded) return {{Verb::enable}, {Verb::bootstrap, When::ifNotLoaded}};
    return {{Verb::enable}, {Verb::bootout, When::ifLoaded}};
}

}  // namespace

std::string AgentCommands::guiDomain(std::uint32_t uid) {
    return "gui/" + std::to_string(uid);
}

bool AgentCommands::isPlainLabel(std::string_view label) {
    return !label.empty() && label.size() <= mostLabelCharacters &&
           label.find_first_not_of(plainCharacters) == std::string_view::npos;
}

AgentPlan AgentCommands::switching(AgentSwitch direction) {
    switch (direction) {
        case AgentSwitch::off: return {{{Verb::bootout}, {Verb::disable}}, {true, false}};
        case AgentSwitch::on: break;
    }
    return {{{Verb::enable}, {Verb::bootstrap}}, {false, true}};
}

AgentSwitch AgentCommands::switchOf(const AgentCapture& before) {
    return before.turnedOn() ? AgentSwitch::on : AgentSwitch::off;
}

AgentPlan AgentCommands::making(const AgentCapture& before) {
    return switching(switchOf(before));
}

AgentPlan AgentCommands::undoing(const AgentCapture& before) {
    return {commandsUndoing(before), {before.turnedOn(), before.wasLoaded}};
}

std::vector<AgentCommand> AgentCommands::undoingByScript(const AgentCapture& before) {
    std::vector<AgentCommand> commands{{before.turnedOn() ? Verb::disable : Verb::enable}};
    if (before.wasLoaded) commands.push_back({Verb::bootstrap});
    return commands;
}

std::string AgentCommands::shellLine(Verb verb, const AgentCapture& agent,
                                     const std::function<std::string(std::string_view)>& quote) {
    const std::string line = "launchctl " + std::string(wordOf(verb));
    if (verb == Verb::bootstrap) return line + " \"gui/$(id -u)\" " + quote(agent.plistPath);
    return line + " \"gui/$(id -u)/\"" + quote(agent.label);
}

}  // namespace brell
