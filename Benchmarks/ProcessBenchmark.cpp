// The status of all tweaks as automation gets it, a whole process, against a process that does nothing.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "Benchmarks/Bare.h"
#include "Benchmarks/Pairs.h"

extern char** environ;

namespace {

// Runs the program to its end, its output thrown away; gives up when it can't be run or fails.
void runToEnd(std::vector<std::string> words) {
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int failure = posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) throw std::system_error(failure, std::generic_category(), words.front());

    int status = 0;
    while (waitpid(child, &status, 0) == -1 && errno == EINTR) {
    }
    if (status != 0) throw std::runtime_error(words.front() + " failed");
}

}  // namespace

int main() try {
    const brell::bare::ScratchFolder folder;
    brell::PairReport report;
    report.compare(
        {.name = "status of all tweaks, whole process", .limit = 2.2, .pairs = 201},
        [&] {
            runToEnd({BRELL_PROGRAM, "--status-json", "--journal-directory", folder.path});
        },
        [] { runToEnd({BRELL_EMPTY_PROGRAM}); });

    return report.exitStatus();
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 2;
}
