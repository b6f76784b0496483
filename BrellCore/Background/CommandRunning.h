// The one way in which everything else runs an external command.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "BrellCore/Background/AllowedCommand.h"
#include "BrellCore/Support/Failure.h"

namespace brell {

struct CommandResult {
    std::int32_t exitCode;
    std::string stdoutText;  // whole, with U+FFFD for what is not UTF-8; the bare name is a macro of C's
    std::string stderrText;

    bool succeeded() const { return exitCode == 0; }
    std::string output() const { return stderrText.empty() ? stdoutText : stdoutText + "\n" + stderrText; }
    bool operator==(const CommandResult&) const = default;
};

enum class CommandProblem {
    invalidArgument,  // nothing was started; detail is the kind of argument, a blank and the argument
    cannotStart,      // detail is the system's own reason, without a final stop
    timedOut,         // it was asked to stop; detail is the rendered command
    tooMuchOutput,    // the same, unless it had ended: it printed more than is taken
    cancelled,        // the same: its caller's patience ended
};

struct CommandFailure {
    CommandProblem problem;
    std::string detail;
    bool operator==(const CommandFailure&) const = default;
};
std::string describe(const CommandFailure& failure);

// True for a command that was started and asked to stop: what it does may be under way, and end as it likes.
bool wasStopped(CommandProblem problem);

class CommandError final : public FailureError<CommandFailure> {
public:
    using FailureError::FailureError;
    ~CommandError() override;
};

// How long a command may take that waits for a person to answer.
struct CommandPatience {
    double seconds;
    std::function<bool()> isCancelled;  // called on the thread that runs the command, a few times a second
};

// Implementations may be called from any thread, several at once.
class CommandRunning {
public:
    virtual ~CommandRunning();

    // Validates, runs and waits for the end. Any exception means that the command could not be run; one that
    // ran and failed is a result like any other.
    virtual CommandResult run(const AllowedCommand& command) = 0;
    // The same with a patience of its own. A runner that starts no process answers as above, at once.
    virtual CommandResult runPatiently(const AllowedCommand& command, const CommandPatience& patience);
};

}  // namespace brell
