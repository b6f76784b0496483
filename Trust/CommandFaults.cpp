// Every launchctl command in turn fails, hangs or lies.

#include "Trust/Recovery.h"
#include "Trust/Trial.h"

namespace brell::trust {

namespace {

// Which commands go wrong.
enum class Reach { one, laterChanges, allLater };

struct Trouble {
    const char* name;
    ToolFault fault;
    Reach reach;
    bool meets(const AllowedCommand& later) const {
        return reach == Reach::allLater || (reach == Reach::laterChanges && later.isWrite());
    }
};
const std::vector<Trouble>& troubles() {
    static const std::vector<Trouble> all{
        {"refuses", ToolFault::refusing(5, "Input/output error"), Reach::one},
        {"keeps refusing", ToolFault::refusing(150, "Operation not permitted"), Reach::allLater},
        {"keeps refusing changes", ToolFault::refusing(150, "Operation not permitted"), Reach::laterChanges},
        {"refuses after doing it", ToolFault::refusingAfterAll(1, "odd"), Reach::one},
        {"hangs", ToolFault::hanging(), Reach::one},
        {"keeps hanging", ToolFault::hanging(), Reach::allLater},
        {"hangs after doing it", ToolFault::hangingAfterwards(), Reach::one},
        {"keeps hanging after doing it", ToolFault::hangingAfterwards(), Reach::allLater},
        {"lies", ToolFault::lying(), Reach::one},
        {"keeps lying", ToolFault::lying(), Reach::allLater},
    };
    return all;
}

std::size_t commandsOf(const Stage& stage, const Scene& scene) {
    Ready rig(stage, scene);
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
    Ready rig(stage, scene);
    std::size_t seen = 0;
    rig.tools->interfere([&](const AllowedCommand& command) {
        const std::size_t number = seen++;
        return number == n || (number > n && trouble.meets(command)) ? std::optional(trouble.fault)
                                                                     : std::nullopt;
    });
    const Attempt made = attempt(scene, rig);
    rig.tools->interfere({});
    return judgeAttempt(stage, scene, rig, made, trouble.reach != Reach::one, goal);
}

}  // namespace

void tryCommandFaults(const Stage& stage, const Scene& scene, Share& share, const Report& report) {
    const Goal goal = goalOf(stage, scene);
    std::vector<Mishap> mishaps;
    for (const Trouble& trouble : troubles())
        mishaps.push_back(
            {trouble.name, [&](std::size_t n) { return tryTrouble(stage, scene, goal, n, trouble); }});
    tryAtEach(scene.name + ", command", commandsOf(stage, scene), mishaps, share, report);
}

}  // namespace brell::trust
