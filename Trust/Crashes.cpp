// The process ends at every system call in turn.

#include <sys/wait.h>
#include <unistd.h>

#include "Tests/Support/SystemCalls.h"
#include "Trust/Trial.h"

using brell::testing::EachCall;
using brell::testing::SystemCall;

namespace fs = std::filesystem;

namespace brell::trust {

namespace {

constexpr int endedThere = 42;

// Gives the exit status: endedThere, or that of an operation that was over before its n-th call.
int performInChild(const Stage& stage, const Scene& scene, std::size_t n) {
    const pid_t child = ::fork();
    if (child == 0) {
        try {
            Rig rig(stage.world());
            damageJournal(scene, rig);
            // Instead of its n-th call, as a kill does: nothing is cleaned up, nothing is written.
            const EachCall ending(stage.world(), [left = n](SystemCall) mutable {
                if (left-- == 0) ::_exit(endedThere);
                return 0;
            });
            scene.perform(rig);
        } catch (const std::exception&) {
            ::_exit(1);
        }
        ::_exit(0);
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
    return WEXITSTATUS(status);
}

}  // namespace

std::size_t callsOf(const Stage& stage, const Scene& scene) {
    stage.reset();
    Rig rig(stage.world());
    damageJournal(scene, rig);
    const testing::CountedCalls counted(stage.world());
    scene.perform(rig);
    return counted.all();
}

void tryCrashes(const Stage& stage, const Scene& scene, Share& share, const Report& report) {
    const std::size_t calls = callsOf(stage, scene);
    for (std::size_t n = 0; n < calls; ++n) {
        if (!share.takes()) continue;
        stage.reset();
        const int status = performInChild(stage, scene, n);
        Faults faults;
        if (status != endedThere)
            faults.push_back("the process ended by itself, with status " + std::to_string(status));
        append(faults, judge(stage, {}));
        report(scene.name + ", ended at call " + std::to_string(n + 1) + " of " + std::to_string(calls),
               faults);
    }
}

}  // namespace brell::trust
