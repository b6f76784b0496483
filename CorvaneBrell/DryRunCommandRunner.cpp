#include "CorvaneBrell/DryRunCommandRunner.h"

#include "CorvaneBrell/Console.h"

namespace brell {

CommandResult DryRunCommandRunner::run(const AllowedCommand& command) {
    if (!command.isWrite()) return base_.run(command);
    printLine(out_, "dry-run: would run " + command.rendered());
    return {1, "", "dry run: not executed"};
}

CommandResult DryRunCommandRunner::runPatiently(const AllowedCommand& command,
                                                const CommandPatience& patience) {
    return command.isWrite() ? run(command) : base_.runPatiently(command, patience);
}

}  // namespace brell
