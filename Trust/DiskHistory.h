// What a disk may hold after a power cut, worked out from the calls of one run.
//
// What was synchronised is there. The bytes written to a file since then may be there up to any write, in
// part, or as zeros of the right length; of the names given and taken in a folder since it was synchronised,
// any may be there and any may be missing. Files that belong to macOS (its preferences, launchd's state) are
// replaced whole by somebody who takes care of that: each may be any of the versions there were.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Tests/Support/SystemCalls.h"

namespace brell::trust {

// Of one folder tree at one moment, by path within the Mac.
struct Snapshot {
    struct Node {
        ino_t inode;
        bool isFolder;
        std::string contents;
    };
    std::map<std::string, Node> ours;  // what Brell keeps
    std::map<std::string, std::string> ofTheSystem;
};

// Notes the calls that change or synchronise something as long as it lives, and what the disk showed before
// each.
class DiskRecorder final : testing::CallObserver {
public:
    explicit DiskRecorder(const std::filesystem::path& mac);
    ~DiskRecorder() override;

    struct Step {
        testing::SystemCall call;
        std::string path;  // within the Mac
        Snapshot before;
    };
    std::vector<Step> steps;

private:
    int sees(testing::SystemCall call, const std::string& path) override;
    const std::filesystem::path mac_;
};
Snapshot snapshotOf(const std::filesystem::path& mac);

// One state of the disk.
struct Disk {
    std::map<std::string, std::optional<std::string>> ours;         // nothing: a folder
    std::map<std::string, std::optional<std::string>> ofTheSystem;  // nothing: no such file
    bool systemLags = false;  // one of the system's files is not its newest version
    bool operator==(const Disk&) const = default;
    bool operator<(const Disk& other) const;
    void layDown(const std::filesystem::path& mac) const;  // over a Mac as it was before the run
};

// Follows a run from call to call.
class DiskHistory {
public:
    explicit DiskHistory(const Snapshot& atFirst);

    void advance(const Snapshot& before, testing::SystemCall call, const std::string& path,
                 const Snapshot& after);

    // Every state that a power cut now may leave. Where more than mostCombinations could be combined, those
    // in which at most two things differ from the newest state or from the oldest.
    std::vector<Disk> afterPowerCut() const;

private:
    using Object = std::size_t;
    struct File {
        std::vector<std::string> versions;  // the first is synchronised, the last is the newest
    };
    using Naming =
        std::map<std::string, std::optional<Object>>;  // in one folder, at once; nothing: taken away
    struct Folder {
        std::map<std::string, Object> synchronised;
        std::vector<Naming> pending;
        std::map<std::string, Object> with(const std::vector<bool>& done) const;
    };
    struct Choice;
    struct Dial;

    Object objectOf(const Snapshot::Node& node) const { return objects_.at(node.inode); }
    void synchronise(const Snapshot& now, const std::string& path);
    void noteNewObjects(const Snapshot& before, const Snapshot& after);
    void noteContents(const Snapshot& before, const Snapshot& after);
    void noteNames(const Snapshot& before, const Snapshot& after);
    std::vector<Dial> dials() const;
    Disk diskWith(const std::vector<Dial>& dials, const std::vector<std::size_t>& settings) const;
    void lay(Choice& choice, Object object, const std::string& path) const;

    std::map<ino_t, Object> objects_;  // of the newest snapshot
    std::map<Object, File> files_;
    std::map<Object, Folder> folders_;
    std::map<std::string, std::vector<std::optional<std::string>>> ofTheSystem_;  // the last is the newest
    Object next_ = 0;
    Object root_ = 0;
};

}  // namespace brell::trust
