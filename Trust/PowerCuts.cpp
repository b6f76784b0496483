// The power goes after every call in turn, and the disk holds whatever it may hold then.

#include <set>

#include "Trust/DiskHistory.h"
#include "Trust/Trial.h"

namespace brell::trust {

namespace {

struct Run {
    std::vector<DiskRecorder::Step> steps;
    Snapshot atEnd;
    std::vector<JournalEntry> entries;  // saved in the end
};

Run recorded(const Stage& stage, const Scene& scene) {
    stage.reset();
    Rig rig(stage.world());
    damageJournal(scene, rig);
    Run run;
    {
        DiskRecorder recorder(stage.world());
        scene.perform(rig);
        run.steps = std::move(recorder.steps);
    }
    run.atEnd = snapshotOf(stage.world());
    run.entries = rig.journal.all();
    return run;
}

// Gives a state that several calls may leave only once.
class Tries {
public:
    Tries(const Stage& stage, const Scene& scene, Share& share, const Report& report)
        : stage_(stage), scene_(scene), share_(share), report_(report) {}

    void after(std::size_t calls, const DiskHistory& history,
               const std::optional<std::vector<JournalEntry>>& saved) {
        for (const Disk& disk : history.afterPowerCut()) {
            if (!(saved ? triedAtEnd_ : tried_).insert(disk).second || !share_.takes()) continue;
            stage_.reset();
            disk.layDown(stage_.world());
            report_(scene_.name + ", power cut after " + std::to_string(calls) + " calls, state " +
                        std::to_string(tried_.size() + triedAtEnd_.size()),
                    judge(stage_, {saved, disk.systemLags}));
        }
    }

private:
    const Stage& stage_;
    const Scene& scene_;
    Share& share_;
    const Report& report_;
    std::set<Disk> tried_, triedAtEnd_;
};

}  // namespace

void tryPowerCuts(const Stage& stage, const Scene& scene, Share& share, const Report& report) {
    const Run run = recorded(stage, scene);
    if (run.steps.empty()) return;
    DiskHistory history(run.steps.front().before);
    Tries tries(stage, scene, share, report);
    for (std::size_t i = 0; i < run.steps.size(); ++i) {
        const bool isLast = i + 1 == run.steps.size();
        const DiskRecorder::Step& step = run.steps[i];
        history.advance(step.before, step.call, step.path, isLast ? run.atEnd : run.steps[i + 1].before);
        tries.after(i + 1, history, isLast ? std::optional(run.entries) : std::nullopt);
    }
}

}  // namespace brell::trust
