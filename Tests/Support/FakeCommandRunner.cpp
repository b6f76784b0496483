#include "Tests/Support/FakeCommandRunner.h"

namespace brell::testing {

void FakeCommandRunner::answer(const AllowedCommand& command, CommandResult result) {
    const std::lock_guard lock(mutex_);
    failing_.erase(command.rendered());
    answers_[command.rendered()] = std::move(result);
}

void FakeCommandRunner::answer(const AllowedCommand& command, std::string standardOutput) {
    answer(command, CommandResult{0, std::move(standardOutput), {}});
}

void FakeCommandRunner::fail(const AllowedCommand& command) {
    const std::lock_guard lock(mutex_);
    failing_.insert(command.rendered());
}

CommandResult FakeCommandRunner::run(const AllowedCommand& command) {
    command.validate();
    const std::lock_guard lock(mutex_);
    commands_.push_back(command);
    const std::string rendered = command.rendered();
    if (failing_.contains(rendered)) throw CommandError({CommandProblem::timedOut, rendered});
    const auto found = answers_.find(rendered);
    if (found == answers_.end()) return {64, {}, "no answer for " + rendered};
    return found->second;
}

std::vector<AllowedCommand> FakeCommandRunner::commands() const {
    const std::lock_guard lock(mutex_);
    return commands_;
}

}  // namespace brell::testing
