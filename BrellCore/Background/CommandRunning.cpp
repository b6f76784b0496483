#include "BrellCore/Background/CommandRunning.h"

namespace brell {

std::string describe(const CommandFailure& failure) {
    switch (failure.problem) {
        case CommandProblem::invalidArgument:
            return "Refused to run a command with an invalid " + failure.detail + ".";
        case CommandProblem::cannotStart: return "The command could not be started: " + failure.detail + ".";
        case CommandProblem::timedOut:
            return "The command did not finish in time and was stopped: " + failure.detail + ".";
    }
    return failure.detail;
}

CommandError::~CommandError() = default;

CommandRunning::~CommandRunning() = default;

}  // namespace brell
