// Every launchctl command in turn fails, hangs or lies.

#include "Tests/Trust/Recovery.h"
#include "Tests/Trust/Trial.h"

namespace brell::trust {

namespace {

struct Trouble {
    const char* name;
    ToolFault fault;
    bool lasts;  // so do all later commands
};
const std::vector<Trouble>& troubles() {
    static const std::vector<Trouble> all{
        {"refuses", ToolFault::refusing(5, "Input/output error"), false},
        {"keeps refusing", ToolFault::refusing(150, "Operation not permitted"), true},
        {"refuses after doing it", ToolFault::refusingAfterAll(1, "odd"), false},
        {"hangs", ToolFault::hanging(), false},
        {"keeps hanging", ToolFault::hanging(), true},
        {"hangs after doing it", ToolFault::hangingAfterwards(), false},
        {"keeps hanging after doing it", ToolFault::hangingAfterwards(), true},
        {"lies", ToolFault::lying(), false},
        {"keeps lying", ToolFault::lying(), true},
    };
    return all;
}

std::size_t commandsOf(const Stage& stage, const Scene& scene) {
    stage.reset();
    Rig rig(stage.world());
    std::size_t commands = 0;
    rig.tools->interfere([&](const AllowedCommand&) {
        ++commands;
        return std::nullopt;
    });
    scene.perform(rig);
    return commands;
}

Faults tryTrouble(const Stage& stage, const Scene& scene, const Goal& goal, std::size_t n,
                  const Trouble& trouble) {
    stage.reset();
    Rig rig(stage.world());
    std::size_t seen = 0;
    rig.tools->interfere([&](const AllowedCommand&) {
        const std::size_t number = seen++;
        return number == n || (trouble.lasts && number > n) ? std::optional(trouble.fault) : std::nullopt;
    });
    const Attempt made = attempt(scene, rig);
    rig.tools->interfere({});
    return judgeAttempt(stage, scene, rig, made, trouble.lasts, goal);
}

}  // namespace

void tryCommandFaults(const Stage& stage, const Scene& scene, Share& share, const Report& report) {
    const Goal goal = goalOf(stage, scene);
    const std::size_t commands = commandsOf(stage, scene);
    for (std::size_t n = 0; n < commands; ++n)
        for (const Trouble& trouble : troubles())
            if (share.takes())
                report(scene.name + ", command " + std::to_string(n + 1) + " " + trouble.name,
                       tryTrouble(stage, scene, goal, n, trouble));
}

}  // namespace brell::trust
