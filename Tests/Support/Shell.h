// Runs programs the way a user does who types a line.
#pragma once

#include <string>

namespace brell::testing {

struct Finished {
    int status;          // 128 and more: ended by a signal
    std::string output;  // of the line's standard output
    bool operator==(const Finished&) const = default;
};

// The line as the system's sh runs it.
Finished runLine(const std::string& line);

}  // namespace brell::testing
