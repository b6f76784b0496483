// The program without a window, for automation: starts in milliseconds.

#include <csignal>
#include <iostream>

#include "CorvaneBrell/HeadlessCommands.h"
#include "CorvaneBrell/HeadlessTour.h"
#include "CorvaneBrell/LaunchOptions.h"

namespace {

// A result that nobody could read is no success.
int ended(int status) {
    std::cout.flush();
    return std::cout || status != brell::ExitStatus::success ? status : brell::ExitStatus::failure;
}

}  // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);  // a reader that goes away must not end a change half way
    const brell::CommandLine commandLine = brell::readCommandLine(argc, argv);
    if (const auto& end = commandLine.earlyEnd) {
        (end->status == 0 ? std::cout : std::cerr) << end->text;
        return end->status;
    }
    if (const auto status = brell::HeadlessCommands::runIfRequested(commandLine.options, std::cout))
        return ended(*status);
    if (commandLine.options.sampleMac) return ended(brell::runHeadlessTour(commandLine.options, std::cout));
    std::cerr << "error: There is nothing to do: name a request, or a sample Mac for a tour. Try --help.\n";
    return brell::ExitStatus::cannotStart;
}
