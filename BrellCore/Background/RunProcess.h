// Running one program with nothing inherited. Only ProcessCommandRunner calls this, with a command from the
// closed list, and its tests, with a program of their own.
#pragma once

#include <cstddef>
#include <string>
#include <variant>
#include <vector>

#include "BrellCore/Background/CommandRunning.h"

namespace brell {

inline constexpr std::size_t mostOutputBytes = 64 << 20;  // of each of its two outputs

// Runs the program at this path with an empty environment, no input and none of our descriptors, and collects
// everything it prints. A program ended by a signal has the exit code 128 and the signal's number.
//
// Gives why it was stopped (timedOut, tooMuchOutput, cancelled) instead: the program was then asked to end,
// politely, and what it printed is dropped. The caller comes back within the limit and twice two seconds even
// when the program does not obey, or has left another process behind that holds its output open. Raises
// CommandError when it can't be started.
std::variant<CommandResult, CommandProblem> runProcess(const std::string& executable,
                                                       const std::vector<std::string>& arguments,
                                                       const CommandPatience& patience);

}  // namespace brell
