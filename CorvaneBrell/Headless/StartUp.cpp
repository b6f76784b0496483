#include "CorvaneBrell/Headless/StartUp.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <iostream>

#include "CorvaneBrell/Headless/HeadlessCommands.h"

namespace brell {

namespace {

// A file that is opened where the standard output was closed would get what is printed. Nothing can be
// written to what takes its place, so that printing fails as before.
void occupyStandardDescriptors() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor)
        if (::fcntl(descriptor, F_GETFD) < 0 && ::open("/dev/null", O_RDONLY) != descriptor) return;
}

// A journal or a lock that its own user may not read and write would stop every later run.
void keepOwnPermissions() {
    const mode_t others = ::umask(0777) & 0077;
    ::umask(others);
}

}  // namespace

StartUp startUp(int argc, const char* const* argv) {
    occupyStandardDescriptors();
    keepOwnPermissions();
    std::signal(SIGPIPE, SIG_IGN);  // a reader that goes away must not end a change half way
    const CommandLine commandLine = readCommandLine(argc, argv);
    if (const auto& end = commandLine.earlyEnd) {
        (end->status == 0 ? std::cout : std::cerr) << end->text;
        return {commandLine.options, ended(end->status)};
    }
    std::optional<int> status = HeadlessCommands::runIfRequested(commandLine.options, std::cout);
    if (status) status = ended(*status);
    return {commandLine.options, status};
}

int ended(int status) {
    std::cout.flush();
    return std::cout || status != ExitStatus::success ? status : ExitStatus::failure;
}

}  // namespace brell
