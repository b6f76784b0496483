// The power goes after every call in turn, and the disk holds whatever it may hold then.

#include "Trust/DiskHistory.h"
#include "Trust/Trial.h"

namespace brell::trust {

void tryPowerCuts(const Stage& stage, const Scene& scene, Share& share, const Report& report) {
    std::vector<JournalEntry> saved;  // in the end
    const auto cuts = [&] {
        Ready rig(stage, scene);
        auto found = powerCutsIn(stage.world(), [&] { scene.perform(rig); });
        saved = rig.journal.all();
        return found;
    }();
    for (std::size_t i = 0; i < cuts.size(); ++i)
        for (const Disk& disk : cuts[i]) {
            if (!share.takes()) continue;
            stage.reset();
            disk.layDown(stage.world());
            const bool isLast = i + 1 == cuts.size();
            report(scene.name + ", power cut after call " + std::to_string(i + 1) + ", state " +
                       std::to_string(&disk - cuts[i].data() + 1),
                   judge(stage, {isLast ? std::optional(saved) : std::nullopt, disk.systemLags}));
        }
}

}  // namespace brell::trust
