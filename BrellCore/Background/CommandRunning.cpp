#include "BrellCore/Background/CommandRunning.h"

namespace brell {

std::string describe(const CommandFailure& failure) {
    switch (failure.problem) {
        case CommandProblem::invalidArgument:
            return "Refused to run a command with an invalid " + failure.detail + ".";
        case CommandProblem::cannotStart: return "The command could not be started: " + failure.detail + ".";
        case CommandProblem::timedOut:
            return "The command did not finish in time and was stopped: " + failure.detail + ".";
        case CommandProblem::tooMuchOutput:
            return "The command printed more than 64 MiB, which is more than Brell takes: " + failure.detail +
                   ".";
        case CommandProblem::cancelled: return "The command was cancelled: " + failure.detail + ".";
    }
    return failure.detail;
}

bool wasStopped(CommandProblem problem) {
    return problem == CommandProblem::timedOut || problem == CommandProblem::tooMuchOutput ||
           problem == CommandProblem::cancelled;
}

CommandError::~CommandError() = default;

CommandRunning::~CommandRunning() = default;

CommandResult CommandRunning::runPatiently(const AllowedCommand& command, const CommandPatience&) {
    return run(command);
}

}  // namespace brell
