// One child process: how it is started, and when and how it ended.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "BrellCore/Support/UniqueFd.h"

namespace brell {

struct Pipe {
    UniqueFd readEnd;
    UniqueFd writeEnd;
};

// Both ends are closed in every child that is started. Raises std::system_error.
Pipe makePipe();

// Used by one thread.
class ChildProcess {
public:
    // Starts the program with an empty environment, the null device as its input and these outputs; every
    // other descriptor is closed in it and no signal is blocked or ignored. Raises std::system_error.
    ChildProcess(const std::string& executable, const std::vector<std::string>& arguments,
                 const UniqueFd& standardOutput, const UniqueFd& standardError);

    // A child that still runs is left alone, and never stays a zombie afterwards.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    bool hasEnded();

    // Only once it has ended: what it returned to the system, or 128 and the number of the signal that ended
    // it, or -1 when another part of this program took the answer away.
    int exitCode() const { return exitCode_.value(); }

    // Asks the child to end, unless it already has.
    void terminate();

private:
    pid_t pid_;  // the child's until it was seen to have ended, afterwards perhaps another process's
    std::optional<int> exitCode_;
};

}  // namespace brell
