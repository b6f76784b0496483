#include "BrellCore/Background/AgentToggleError.h"

#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

std::string_view beginning(AgentToggleProblem problem) {
    switch (problem) {
        case AgentToggleProblem::refused:
        case AgentToggleProblem::engine: break;
        case AgentToggleProblem::command: return "launchctl refused: ";
        case AgentToggleProblem::verifyFailed: return "After the change, launchd reports something else: ";
    }
    return {};
}

}  // namespace

// The names of job files, and what tools print, are other people's.
std::string describe(const AgentToggleFailure& failure) {
    return std::string(beginning(failure.problem)) + oneLine(failure.text);
}

AgentToggleError::~AgentToggleError() = default;

}  // namespace brell
