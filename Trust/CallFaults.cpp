// At every file system call in turn the process ends, the call fails, or somebody removes the journal.

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Tests/Support/SystemCalls.h"
#include "Trust/Recovery.h"
#include "Trust/Trial.h"

using brell::testing::EachCall;
using brell::testing::SystemCall;

namespace brell::trust {

namespace {

constexpr int endedThere = 42;

std::size_t callsOf(const Stage& stage, const Scene& scene) {
    Ready rig(stage, scene);
    const testing::CountedCalls counted(stage.world());
    scene.perform(rig);
    return counted.all();
}

// Instead of its n-th call the process ends, as a kill does: nothing is cleaned up, nothing is written.
Faults tryCrash(const Stage& stage, const Scene& scene, std::size_t n) {
    const pid_t child = ::fork();
    if (child == 0) {
        try {
            Ready rig(stage, scene);
            const EachCall ending(stage.world(), [left = n](SystemCall, const auto&) mutable {
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
    const bool isOver = child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status);
    Faults faults;
    if (!isOver || WEXITSTATUS(status) != endedThere)
        faults.push_back("the process ended by itself, with status " + std::to_string(status));
    append(faults, judge(stage, {}));
    return faults;
}

// Watches that an undo goes one way only: looks at the keys of the changes that are active when it is made,
// each time before a preference file is replaced. A key that has come back to its original stays there.
class OneWay {
public:
    explicit OneWay(Rig& rig) : mac_(rig.mac) {
        for (const JournalEntry& entry : rig.journal.active())
            for (const JournaledWrite& write : entry.writes)
                if (write.original != write.written) writes_.push_back(write);
    }

    Faults found() {  // after one more look
        look();
        return faults_;
    }

private:
    void look() {
        const auto store = mac_.openPreferences();
        for (const JournaledWrite& write : writes_) {
            const StoredValue now = store->exactValue(write.key);
            if (now == write.original)
                back_.insert(write.key);
            else if (back_.contains(write.key))
                faults_.push_back(write.key.rendered() + " was back and then became " + now.rendered());
        }
    }

    const SampleMac mac_;
    std::vector<JournaledWrite> writes_;
    std::set<PrefKey> back_;
    Faults faults_;
    const EachCall watching_{mac_.preferences(), [this](SystemCall call, const auto&) {
                                 if (call == SystemCall::rename) look();
                                 return 0;
                             }};
};

std::size_t openDescriptors() {
    return testing::namesIn("/proc/self/fd").size();
}

Faults checkNothingLeftBehind(const Rig& rig, std::size_t descriptorsBefore) {
    Faults faults;
    for (const fs::path& folder : {rig.journalDirectory, rig.mac.preferences()})
        for (const std::string& name : testing::namesIn(folder))
            if (name.ends_with(".tmp")) faults.push_back("left behind: " + name);
    if (openDescriptors() != descriptorsBefore) faults.push_back("a file was left open");
    return faults;
}

// The n-th call fails, and if that lasts, with it all later ones of its kind.
Faults tryFault(const Stage& stage, const Scene& scene, const Goal& goal, std::size_t n, int code,
                bool lasts) {
    stage.reset();
    Rig rig(stage.world());
    const std::size_t descriptors = openDescriptors();
    OneWay undo(rig);
    damageJournal(scene, rig);
    std::optional<SystemCall> failed;
    auto faulty =
        std::make_optional<EachCall>(stage.world(), [&, left = n](SystemCall call, const auto&) mutable {
            const bool isTheOne = !failed && left-- == 0;
            if (isTheOne) failed = call;
            return isTheOne || (lasts && failed == call) ? code : 0;
        });
    const Attempt made = attempt(scene, rig);
    faulty.reset();
    Faults faults = undo.found();
    if (!failed) return {"the call was never made"};
    if (failed != SystemCall::unlink) append(faults, checkNothingLeftBehind(rig, descriptors));
    append(faults, judgeAttempt(stage, scene, rig, made, lasts, goal));
    return faults;
}

// The program that was at work goes on: what it does is done and on record, and all of it comes back.
Faults tryRemoval(const Stage& stage, const Scene& scene, const Goal& goal, std::size_t n,
                  const fs::path& what) {
    Ready rig(stage, scene);
    auto removing =
        std::make_optional<EachCall>(stage.world(), [&, left = n](SystemCall, const auto&) mutable {
            if (left-- == 0) fs::remove_all(rig.journalDirectory / what);
            return 0;
        });
    const Attempt made = attempt(scene, rig);
    removing.reset();
    Faults faults = made.sentences;
    if (made.foreignError) faults.push_back("an error of a foreign type: " + *made.foreignError);
    if (activeTweaks(rig.journal) != goal.activeTweaks)
        faults.push_back("not the entries of the goal are active");
    append(faults, differences(goal.condition, conditionOf(stage.world())));
    for (const auto& [id, reason] : rig.engine.restoreAll({}).failed) faults.push_back(reason);
    append(faults, differences(stage.setting().original, conditionOf(stage.world())));
    return faults;
}

}  // namespace

void tryCrashes(const Stage& stage, const Scene& scene, Share& share, const Report& report) {
    tryAtEach(scene.name + ", call", callsOf(stage, scene),
              {{"the process ends", [&](std::size_t n) { return tryCrash(stage, scene, n); }}}, share,
              report);
}

void tryFileFaults(const Stage& stage, const Scene& scene, Share& share, const Report& report) {
    const Goal goal = goalOf(stage, scene);
    const std::pair<int, std::string> codes[] = {{ENOSPC, "no space"},
                                                 {EIO, "input/output error"},
                                                 {EACCES, "permission denied"},
                                                 {EMFILE, "too many open files"},
                                                 {EINTR, "interrupted"}};
    std::vector<Mishap> mishaps;
    for (const auto& [code, name] : codes)
        for (const bool lasts : {false, true})
            if (code != EINTR || !lasts)  // an interruption that never ends is none
                mishaps.push_back(
                    {name + (lasts ? ", and its like" : ""), [&, code = code, lasts](std::size_t n) {
                         return tryFault(stage, scene, goal, n, code, lasts);
                     }});
    tryAtEach(scene.name + ", call", callsOf(stage, scene), mishaps, share, report);
}

void tryRemovals(const Stage& stage, const Scene& scene, Share& share, const Report& report) {
    if (scene.damage) return;  // what is removed here is all that a damaged journal leaves
    const Goal goal = goalOf(stage, scene);
    std::vector<Mishap> mishaps;
    for (const std::string what : {"", ".journal.lock", "journal.json"})
        mishaps.push_back({"removed before it: " + (what.empty() ? "the journal's folder" : what),
                           [&, what](std::size_t n) { return tryRemoval(stage, scene, goal, n, what); }});
    tryAtEach(scene.name + ", call", callsOf(stage, scene), mishaps, share, report);
}

}  // namespace brell::trust
