// A command runner that prints the changing commands instead of running them.
#pragma once

#include <ostream>

#include "BrellCore/Background/CommandRunning.h"

namespace brell {

// Reading commands go to the real runner. A changing one answers with exit code 1 and "dry run: not
// executed", so that callers see a change that was not made.
class DryRunCommandRunner final : public CommandRunning {
public:
    // Both must outlive it.
    DryRunCommandRunner(CommandRunning& base, std::ostream& out) : base_(base), out_(out) {}

    CommandResult run(const AllowedCommand& command) override;
    CommandResult runPatiently(const AllowedCommand& command, const CommandPatience& patience) override;

private:
    CommandRunning& base_;
    std::ostream& out_;
};

}  // namespace brell
