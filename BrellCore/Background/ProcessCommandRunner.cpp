#include "BrellCore/Background/ProcessCommandRunner.h"

#include "BrellCore/Background/RunProcess.h"

namespace brell {

CommandResult ProcessCommandRunner::run(const AllowedCommand& command) {
    command.validate();
    const std::string executable(command.executable());
    if (auto result = runProcess(executable, command.arguments(), timeout_)) return *std::move(result);
    throw CommandError({CommandProblem::timedOut, command.rendered()});
}

}  // namespace brell
