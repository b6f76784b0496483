#include "CorvaneBrell/StartUp.h"

#include <csignal>
#include <iostream>

#include "CorvaneBrell/HeadlessCommands.h"

namespace brell {

StartUp startUp(int argc, const char* const* argv) {
    std::signal(SIGPIPE, SIG_IGN);  // a reader that goes away must not end a change half way
    const CommandLine commandLine = readCommandLine(argc, argv);
    if (const auto& end = commandLine.earlyEnd) {
        (end->status == 0 ? std::cout : std::cerr) << end->text;
        return {commandLine.options, end->status};
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
