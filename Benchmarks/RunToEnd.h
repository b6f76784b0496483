// A whole process as one call to be measured.
#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

extern char** environ;

namespace brell::bare {

// Runs the program to its end, its output thrown away; gives up when it can't be run or fails.
inline void runToEnd(std::vector<std::string> words) {
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

}  // namespace brell::bare
