// A command runner that answers from a script, instead of running anything.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "BrellCore/Background/CommandRunning.h"

namespace brell::testing {

// Validates like the real one. Answers stay until they are replaced; a command without one exits with 64 and
// says so. For one thread.
class FakeCommandRunner final : public CommandRunning {
public:
    void answer(const AllowedCommand& command, CommandResult result) {
        answers_[command.rendered()] = std::move(result);
    }
    void answer(const AllowedCommand& command, std::string standardOutput) {
        answer(command, CommandResult{0, std::move(standardOutput), {}});
    }
    // The command can't be run at all: it did not finish in time.
    void fail(const AllowedCommand& command) { answers_[command.rendered()] = std::nullopt; }

    CommandResult run(const AllowedCommand& command) override {
        command.validate();
        commands.push_back(command);
        const std::string rendered = command.rendered();
        const auto found = answers_.find(rendered);
        if (found == answers_.end()) return {64, {}, "no answer for " + rendered};
        if (!found->second) throw CommandError({CommandProblem::timedOut, rendered});
        return *found->second;
    }

    std::vector<AllowedCommand> commands;  // that passed validation, in their order

private:
    std::map<std::string, std::optional<CommandResult>> answers_;  // by the rendered command
};

}  // namespace brell::testing
