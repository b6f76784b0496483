// A command runner that answers from a script, instead of running anything.
#pragma once

#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "BrellCore/Background/CommandRunning.h"

namespace brell::testing {

// Validates like the real one. Answers stay until they are replaced; a command without one exits with 64 and
// says so.
class FakeCommandRunner final : public CommandRunning {
public:
    void answer(const AllowedCommand& command, CommandResult result);
    void answer(const AllowedCommand& command, std::string standardOutput);

    // The command can't be run at all: it did not finish in time.
    void fail(const AllowedCommand& command);

    CommandResult run(const AllowedCommand& command) override;

    std::vector<AllowedCommand> commands() const;  // that passed validation, in their order

private:
    mutable std::mutex mutex_;                      // guards the fields below
    std::map<std::string, CommandResult> answers_;  // by the rendered command
    std::set<std::string> failing_;
    std::vector<AllowedCommand> commands_;
};

}  // namespace brell::testing
