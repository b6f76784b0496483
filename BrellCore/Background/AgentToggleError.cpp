#include "BrellCore/Background/AgentToggleError.h"

namespace brell {

std::string describe(const AgentToggleFailure& failure) {
    switch (failure.problem) {
        case AgentToggleProblem::refused:
        case AgentToggleProblem::engine: return failure.text;
        case AgentToggleProblem::command: return "launchctl refused: " + failure.text;
        case AgentToggleProblem::verifyFailed:
            return "After the change, launchd reports something else: " + failure.text;
    }
    return {};
}

AgentToggleError::~AgentToggleError() = default;

}  // namespace brell
