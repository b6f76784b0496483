// Runs the allowed commands as real child processes.
#pragma once

#include "BrellCore/Background/CommandRunning.h"

namespace brell {

// Blocks its caller until the command ends, or for at most the limit and two grace periods of two seconds.
class ProcessCommandRunner final : public CommandRunning {
public:
    explicit ProcessCommandRunner(double timeoutSeconds) : timeout_(timeoutSeconds) {}

    CommandResult run(const AllowedCommand& command) override;
    CommandResult runPatiently(const AllowedCommand& command, const CommandPatience& patience) override;

private:
    double timeout_;
};

}  // namespace brell
