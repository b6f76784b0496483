#include "CorvaneBrell/DryRunCommandRunner.h"

#include "CorvaneBrell/Console.h"

namespace brell {

CommandResult DryRunCommandRunner::run(const AllowedCommand& command) {
    if (!command.isWrite()) return base_.run(command);
    printLine(out_, "dry-run: would run " + command.rendered());
    return {1, "", "dry run: not executed"};
}

}  // namespace brell
