#include "BrellCore/Background/ProcessCommandRunner.h"

#include "BrellCore/Background/RunProcess.h"

namespace brell {

CommandResult ProcessCommandRunner::run(const AllowedCommand& command) {
    return runPatiently(command, {timeout_, nullptr});
}

CommandResult ProcessCommandRunner::runPatiently(const AllowedCommand& command,
                                                 const CommandPatience& patience) {
    command.validate();
    const std::string executable(command.executable());
    auto ended = runProcess(executable, command.arguments(), patience);
    if (auto* result = std::get_if<CommandResult>(&ended)) return std::move(*result);
    throw CommandError({std::get<CommandProblem>(ended), command.rendered()});
}

}  // namespace brell
