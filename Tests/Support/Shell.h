// Runs programs the way a user does who types a line.
#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace brell::testing {

struct Finished {
    int status;          // 128 and more: ended by a signal
    std::string output;  // of the line's standard output
    bool operator==(const Finished&) const = default;
};

// The line as the system's sh runs it, with these variables in its environment.
Finished runLine(const std::string& line, const std::map<std::string, std::string>& variables = {});

// One word for a shell, whatever is in it.
std::string shellWord(const std::filesystem::path& word);

}  // namespace brell::testing
