// Somebody removes the journal, or what lies beside it, before every file system call in turn.

#include "Tests/Support/SystemCalls.h"
#include "Trust/Recovery.h"
#include "Trust/Trial.h"

using brell::testing::EachCall;
using brell::testing::SystemCall;

namespace fs = std::filesystem;

namespace brell::trust {

namespace {

// The program that was at work goes on: what it does is done and on record, and all of it comes back.
Faults tryRemoval(const Stage& stage, const Scene& scene, const Goal& goal, std::size_t n,
                  const fs::path& what) {
    stage.reset();
    Rig rig(stage.world());
    Attempt made;
    {
        const EachCall removing(stage.world(), [&, left = n](SystemCall) mutable {
            if (left-- == 0) fs::remove_all(rig.journalDirectory / what);
            return 0;
        });
        made = attempt(scene, rig);
    }
    Faults faults = made.sentences;
    if (made.foreignError) faults.push_back("an error of a foreign type: " + *made.foreignError);
    std::set<std::string> active;
    for (const JournalEntry& entry : rig.journal.active()) active.insert(entry.tweakID);
    if (active != goal.activeTweaks) faults.push_back("not the entries of the goal are active");
    append(faults, differences(goal.condition, conditionOf(stage.world()), {}));
    for (const auto& [id, reason] : rig.engine.restoreAll({}).failed) faults.push_back(reason);
    append(faults, differences(stage.setting().original, conditionOf(stage.world()), {}));
    return faults;
}

}  // namespace

void tryRemovals(const Stage& stage, const Scene& scene, Share& share, const Report& report) {
    if (scene.damage) return;  // what is removed here is all that a damaged journal leaves
    const Goal goal = goalOf(stage, scene);
    const std::size_t calls = callsOf(stage, scene);
    for (std::size_t n = 0; n < calls; ++n)
        for (const char* what : {"", ".journal.lock", "journal.json"})
            if (share.takes())
                report(scene.name + ", before call " + std::to_string(n + 1) +
                           " the journal's folder loses " + (*what ? what : "everything"),
                       tryRemoval(stage, scene, goal, n, what));
}

}  // namespace brell::trust
