// Every file operation in turn fails, once and from then on.

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

namespace fs = std::filesystem;

namespace brell::trust {

namespace {

struct Code {
    int number;
    const char* name;
};
constexpr std::array codes{Code{ENOSPC, "no space"}, Code{EIO, "input/output error"},
                           Code{EACCES, "permission denied"}, Code{EMFILE, "too many open files"},
                           Code{EINTR, "interrupted"}};

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
    const EachCall watching_{mac_.preferences(), [this](SystemCall call) {
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

Faults tryFault(const Stage& stage, const Scene& scene, const Goal& goal, std::size_t n, const Code& code,
                bool lasts) {
    stage.reset();
    Rig rig(stage.world());
    const std::size_t descriptors = openDescriptors();
    OneWay undo(rig);
    damageJournal(scene, rig);
    Attempt made;
    std::optional<SystemCall> failed;
    {
        // The n-th call, and if that lasts, with it all later ones of its kind.
        const EachCall faulty(stage.world(), [&, left = n](SystemCall call) mutable {
            const bool isTheOne = !failed && left-- == 0;
            if (isTheOne) failed = call;
            return isTheOne || (lasts && failed == call) ? code.number : 0;
        });
        made = attempt(scene, rig);
    }
    Faults faults = undo.found();
    if (!failed) return {"the call was never made"};
    if (failed != SystemCall::unlink) append(faults, checkNothingLeftBehind(rig, descriptors));
    append(faults, judgeAttempt(stage, scene, rig, made, lasts, goal));
    return faults;
}

// An interruption that never ends is none.
bool canLast(const Code& code) {
    return code.number != EINTR;
}

}  // namespace

void tryFileFaults(const Stage& stage, const Scene& scene, Share& share, const Report& report) {
    const Goal goal = goalOf(stage, scene);
    const std::size_t calls = callsOf(stage, scene);
    for (std::size_t n = 0; n < calls; ++n)
        for (const Code& code : codes)
            for (const bool lasts : {false, true}) {
                if (lasts && !canLast(code)) continue;
                if (!share.takes()) continue;
                report(scene.name + ", call " + std::to_string(n + 1) + (lasts ? " and its like: " : ": ") +
                           code.name,
                       tryFault(stage, scene, goal, n, code, lasts));
            }
}

}  // namespace brell::trust
