// The program without a window, for automation: starts in milliseconds.

#include <iostream>

#include "CorvaneBrell/HeadlessCommands.h"
#include "CorvaneBrell/HeadlessTour.h"
#include "CorvaneBrell/StartUp.h"

int main(int argc, char** argv) {
    const brell::StartUp start = brell::startUp(argc, argv);
    if (start.ended) return *start.ended;
    if (start.options.sampleMac) return brell::ended(brell::runHeadlessTour(start.options, std::cout));
    std::cerr << "error: There is nothing to do: name a request, or a sample Mac for a tour. Try --help.\n";
    return brell::ExitStatus::cannotStart;
}
