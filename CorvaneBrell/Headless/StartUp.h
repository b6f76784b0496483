// The beginning of every run, with a window or without one.
#pragma once

#include <optional>

#include "CorvaneBrell/LaunchOptions.h"

namespace brell {

struct StartUp {
    LaunchOptions options;
    std::optional<int> ended;  // the exit status of a run that is over already
};

// Reads the words of the command line and carries out what they ask for without a window. All there is to
// say goes to standard output and standard error.
StartUp startUp(int argc, const char* const* argv);

// The status with which a run ends that came to this: a result that nobody could read is no success.
int ended(int status);

}  // namespace brell
