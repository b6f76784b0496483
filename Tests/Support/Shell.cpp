#include "Tests/Support/Shell.h"

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <stdexcept>

namespace brell::testing {

Finished runLine(const std::string& line) {
    std::FILE* pipe = ::popen(line.c_str(), "r");
    if (!pipe) throw std::runtime_error("no shell for: " + line);
    Finished finished{};
    std::array<char, 4096> piece;
    while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), pipe))
        finished.output.append(piece.data(), count);
    const int status = ::pclose(pipe);
    finished.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return finished;
}

}  // namespace brell::testing
