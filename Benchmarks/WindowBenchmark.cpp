// The window from the start of its process to its first paint, against an empty main window.
#include <cstdio>
#include <cstdlib>

#include "Benchmarks/Bare.h"
#include "Benchmarks/Pairs.h"
#include "Benchmarks/RunToEnd.h"

int main() {
    return brell::measured([](brell::PairReport& report) {
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        const brell::bare::ScratchFolder folder;
        const std::string mac = (folder.path / "mac").string();
        report.compare(
            {.name = "first paint of the window, whole process", .limit = 2.4},
            [&] {
                brell::bare::runToEnd({BRELL_FIRST_PAINT, mac});
            },
            [] { brell::bare::runToEnd({BRELL_FIRST_PAINT}); });
    });
}
