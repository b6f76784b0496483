// The status of all tweaks as automation gets it, a whole process, against a process that does nothing.
#include <cstdio>

#include "Benchmarks/Bare.h"
#include "Benchmarks/Pairs.h"
#include "Benchmarks/RunToEnd.h"

int main() {
    return brell::measured([](brell::PairReport& report) {
        const brell::bare::ScratchFolder folder;
        report.compare(
            {.name = "status of all tweaks, whole process", .limit = 2, .pairs = 201},
            [&] {
                brell::bare::runToEnd({BRELL_PROGRAM, "--status-json", "--journal-directory", folder.path});
            },
            [] { brell::bare::runToEnd({BRELL_EMPTY_PROGRAM}); });
    });
}
