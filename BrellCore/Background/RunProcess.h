// Running one program with nothing inherited. Only ProcessCommandRunner calls this, with a command from the
// closed list, and its tests, with a program of their own.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "BrellCore/Background/CommandRunning.h"

namespace brell {

// Runs the program at this path with an empty environment, no input and none of our descriptors, and collects
// everything it prints. A program ended by a signal has the exit code 128 and the signal's number.
//
// Nothing when the time is over: the program was then asked to end, politely, and what it printed is dropped.
// The caller comes back within the limit and twice two seconds even when the program does not obey, or has
// left another process behind that holds its output open. Raises CommandError when it can't be started.
std::optional<CommandResult> runProcess(const std::string& executable,
                                        const std::vector<std::string>& arguments, double timeoutSeconds);

}  // namespace brell
