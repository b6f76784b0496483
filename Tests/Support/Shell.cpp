#include "Tests/Support/Shell.h"

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <stdexcept>

namespace brell::testing {

Finished runLine(const std::string& line, const std::map<std::string, std::string>& variables) {
    std::string whole;
    for (const auto& [name, value] : variables) whole += "export " + name + "=" + shellWord(value) + "; ";
    whole += line;
    std::FILE* pipe = ::popen(whole.c_str(), "r");
    if (!pipe) throw std::runtime_error("no shell for: " + line);
    Finished finished{};
    std::array<char, 4096> piece;
    while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), pipe))
        finished.output.append(piece.data(), count);
    const int status = ::pclose(pipe);
    finished.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return finished;
}

std::string shellWord(const std::filesystem::path& word) {
    std::string text = "'";
    for (const char character : word.string())
        text += character == '\'' ? "'\\''" : std::string(1, character);
    return text + "'";
}

}  // namespace brell::testing
