// The program without a window, for automation: starts in milliseconds.

#include <iostream>

#include "CorvaneBrell/Headless/HeadlessCommands.h"
#include "CorvaneBrell/Headless/StartUp.h"
#include "CorvaneBrell/Headless/Tour.h"

int main(int argc, char** argv) {
    const brell::StartUp start = brell::startUp(argc, argv);
    if (start.ended) return *start.ended;
    const brell::LaunchOptions& options = start.options;
    const bool isAboutWindow = options.snapshotPath || options.openGroup;
    if (options.sampleMac && !isAboutWindow) return brell::ended(brell::runHeadlessTour(options, std::cout));
    std::cerr << "error: There is nothing to do without a window: name a request, or only a sample Mac, "
                 "for a tour. Try --help.\n";
    return brell::ExitStatus::cannotStart;
}
