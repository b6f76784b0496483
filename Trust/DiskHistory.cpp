#include "Trust/DiskHistory.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <set>
#include <tuple>
#include <variant>

#include "Tests/Support/SystemCalls.h"
#include "Tests/Support/Testing.h"

using brell::testing::SystemCall;

namespace fs = std::filesystem;

namespace brell::trust {

namespace {

constexpr const char* library = "Users/sam/Library";
constexpr const char* preferences = "Users/sam/Library/Preferences";
constexpr const char* launchd = "private/var/db/launchd.plist";
constexpr std::size_t mostCombinations = 256;

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

// One call that changes or synchronises something, and what the disk showed before it.
struct Step {
    SystemCall call;
    std::string path;  // within the Mac
    Snapshot before;
};

ino_t inodeOf(const fs::path& path) {
    struct stat status {};
    ::lstat(path.c_str(), &status);
    return status.st_ino;
}

Snapshot snapshotOf(const fs::path& mac) {
    Snapshot snapshot;
    snapshot.ours[library] = {inodeOf(mac / library), true, {}};
    for (fs::recursive_directory_iterator entry(mac / library), end; entry != end; ++entry) {
        const std::string path = entry->path().lexically_relative(mac).string();
        if (path == preferences || path == std::string(library) + "/LaunchAgents") {
            entry.disable_recursion_pending();
            continue;
        }
        const bool isFolder = entry->is_directory();
        snapshot.ours[path] = {inodeOf(entry->path()), isFolder,
                               isFolder ? std::string() : testing::contentsOf(entry->path())};
    }
    for (const std::string& name : testing::namesIn(mac / preferences))
        if (!name.starts_with('.'))
            snapshot.ofTheSystem[preferences + ("/" + name)] = testing::contentsOf(mac / preferences / name);
    snapshot.ofTheSystem[launchd] = testing::contentsOf(mac / launchd);
    return snapshot;
}

std::vector<Step> stepsOf(const fs::path& mac, const std::function<void()>& run) {
    constexpr std::array changing{SystemCall::open, SystemCall::write,  SystemCall::fsync, SystemCall::rename,
                                  SystemCall::link, SystemCall::unlink, SystemCall::mkdir};
    std::vector<Step> steps;
    const testing::EachCall recording(mac, [&](SystemCall call, const std::string& path) {
        if (std::find(changing.begin(), changing.end(), call) != changing.end())
            steps.push_back({call, fs::path(path).lexically_relative(mac).string(), snapshotOf(mac)});
        return 0;
    });
    run();
    return steps;
}

using Object = std::size_t;
using Names = std::map<std::string, Object>;
using Contents = std::variant<std::monostate, std::string, Names>;  // nothing, of a file, of a folder

// Which of so many names are done: every combination of a few; of many, each beginning, and all but one.
std::vector<std::vector<bool>> possiblyDone(std::size_t count) {
    std::vector<std::vector<bool>> masks;
    constexpr std::size_t few = 4;
    if (count <= few) {
        for (std::size_t mask = std::size_t{1} << count; mask-- > 0;) {
            std::vector<bool>& done = masks.emplace_back(count);
            for (std::size_t i = 0; i < count; ++i) done[i] = (mask >> i & 1) != 0;
        }
        return masks;
    }
    for (std::size_t length = count + 1; length-- > 0;) masks.emplace_back(length, true).resize(count, false);
    for (std::size_t missing = 0; missing < count; ++missing)
        masks.emplace_back(count, true)[missing] = false;
    return masks;
}

// A file or folder, ours or the system's.
struct Thing {
    std::vector<Contents> versions;  // the first is synchronised, the last is the newest; a folder has one
    std::vector<std::map<std::string, std::optional<Object>>> pending;  // names, at once; nothing: taken away
    bool isOfTheSystem = false;

    Names namesWith(const std::vector<bool>& done) const {
        Names names = std::get<Names>(versions.front());
        for (std::size_t i = 0; i < pending.size(); ++i)
            if (done[i])
                for (const auto& [name, object] : pending[i]) {
                    names.erase(name);
                    if (object) names.emplace(name, *object);
                }
        return names;
    }

    void note(Contents contents) {
        if (versions.empty() || versions.back() != contents) versions.push_back(std::move(contents));
    }

    void synchronise() {
        if (std::holds_alternative<Names>(versions.front()))
            versions = {namesWith(std::vector<bool>(pending.size(), true))};
        versions = {versions.back()};
        pending.clear();
    }

    // All that it may hold, the newest first.
    std::vector<Contents> possible() const {
        std::vector<Contents> all;
        if (std::holds_alternative<Names>(versions.front())) {
            for (const auto& done : possiblyDone(pending.size())) all.emplace_back(namesWith(done));
            return all;
        }
        all.assign(versions.rbegin(), versions.rend());
        if (isOfTheSystem || versions.size() < 2) return all;
        const std::string newest = std::get<std::string>(all.front()),
                          oldest = std::get<std::string>(all.back());
        const std::size_t kept = newest.starts_with(oldest) ? oldest.size() : 0;
        all.emplace_back(newest.substr(0, kept + (newest.size() - kept) / 2));
        all.emplace_back(newest.substr(0, kept) + std::string(newest.size() - kept, '\0'));
        return all;
    }
};

using Settings = std::vector<std::size_t>;  // of each thing in turn, which of all that it may hold

Settings with(Settings settings, std::size_t thing, std::size_t setting) {
    settings[thing] = setting;
    return settings;
}

// Of things with so many settings each, the first of which is the newest.
std::set<Settings> combinations(const std::vector<std::size_t>& counts) {
    std::size_t product = 1;
    for (const std::size_t count : counts) product = std::min(product * count, mostCombinations + 1);
    const Settings newest(counts.size(), 0);
    std::set<Settings> all{newest};
    if (product <= mostCombinations) {
        for (std::size_t one = 0; one < counts.size(); ++one)
            for (const Settings& known : std::set(all))
                for (std::size_t i = 1; i < counts[one]; ++i) all.insert(with(known, one, i));
        return all;
    }
    Settings oldest;
    for (const std::size_t count : counts) oldest.push_back(count - 1);
    for (const Settings& base : {newest, oldest})
        for (std::size_t one = 0; one < counts.size(); ++one)
            for (std::size_t other = one; other < counts.size(); ++other)
                for (std::size_t i = 0; counts[other] > 1 && i < counts[one]; ++i)
                    for (std::size_t j = 0; j < counts[other]; ++j)
                        all.insert(with(with(base, one, i), other, j));
    return all;
}

// Follows a run from call to call.
class DiskHistory {
public:
    explicit DiskHistory(const Snapshot& atFirst) {
        advance({}, atFirst);
        for (Thing& thing : things_) thing.synchronise();
    }

    void synchronise(const Snapshot& now, const std::string& path) {
        if (const auto node = now.ours.find(path); node != now.ours.end())
            thingOf(node->second).synchronise();
    }

    void advance(const Snapshot& before, const Snapshot& after) {
        noteContents(before, after);
        noteNames(before, after);
        for (const auto& [path, contents] : after.ofTheSystem) {
            const auto [known, isNew] = ofTheSystem_.try_emplace(path, things_.size());
            if (isNew) things_.push_back({{std::monostate()}, {}, true});
            things_[known->second].note(contents);
        }
    }

    std::vector<Disk> afterPowerCut() const {
        std::vector<std::vector<Contents>> possible;
        std::vector<std::size_t> counts;
        for (const Thing& thing : things_) counts.push_back(possible.emplace_back(thing.possible()).size());
        std::vector<Disk> disks;
        for (const Settings& settings : combinations(counts)) {
            std::vector<Contents> held;
            for (Object object = 0; object < things_.size(); ++object)
                held.push_back(possible[object][settings[object]]);
            Disk& disk = disks.emplace_back();
            lay(disk, held, objects_.at(root_), library);
            for (const auto& [path, object] : ofTheSystem_) {
                const auto* text = std::get_if<std::string>(&held[object]);
                disk.ofTheSystem[path] = text ? std::optional(*text) : std::nullopt;
                disk.systemLags |= settings[object] != 0;
            }
        }
        return disks;
    }

private:
    Thing& thingOf(const Snapshot::Node& node) { return things_[objects_.at(node.inode)]; }

    // An inode that had no name before is a new object: its number may have been somebody else's.
    void noteContents(const Snapshot& before, const Snapshot& after) {
        std::set<ino_t> known;
        for (const auto& [path, node] : before.ours) known.insert(node.inode);
        for (const auto& [path, node] : after.ours) {
            if (known.insert(node.inode).second) {
                objects_[node.inode] = things_.size();
                things_.push_back({{node.isFolder ? Contents(Names()) : Contents(std::string())}, {}});
            }
            if (!node.isFolder) thingOf(node).note(node.contents);
        }
        if (before.ours.empty()) root_ = after.ours.at(library).inode;
    }

    void noteNames(const Snapshot& before, const Snapshot& after) {
        std::map<Object, std::map<std::string, std::optional<Object>>> changed;
        // A file in a folder that was renamed stays in it.
        const auto place = [&](const Snapshot& snapshot, const fs::path& path) -> std::optional<Object>& {
            const Snapshot::Node& folder = snapshot.ours.at(path.parent_path().string());
            return changed[objects_.at(folder.inode)][path.filename().string()];
        };
        for (const auto& [path, node] : before.ours)
            if (path != library && !after.ours.contains(path)) place(before, path) = std::nullopt;
        for (const auto& [path, node] : after.ours) {
            const auto old = before.ours.find(path);
            if (path != library && (old == before.ours.end() || old->second.inode != node.inode))
                place(after, path) = objects_.at(node.inode);
        }
        for (auto& [folder, naming] : changed) things_[folder].pending.push_back(std::move(naming));
    }

    void lay(Disk& disk, const std::vector<Contents>& held, Object object, const std::string& path) const {
        const auto* names = std::get_if<Names>(&held[object]);
        disk.ours[path] = names ? std::nullopt : std::optional(std::get<std::string>(held[object]));
        if (!names) return;
        for (const auto& [name, child] : *names) lay(disk, held, child, path + "/" + name);
    }

    std::vector<Thing> things_;        // by object
    std::map<ino_t, Object> objects_;  // of the newest snapshot
    std::map<std::string, Object> ofTheSystem_;
    ino_t root_ = 0;
};

}  // namespace

bool Disk::operator<(const Disk& other) const {
    return std::tie(ours, ofTheSystem, systemLags) <
           std::tie(other.ours, other.ofTheSystem, other.systemLags);
}

void Disk::layDown(const fs::path& mac) const {
    for (const std::string& name : testing::namesIn(mac / library))
        if (name != "Preferences" && name != "LaunchAgents") fs::remove_all(mac / library / name);
    for (const auto& [path, contents] : ours)
        if (contents)
            testing::setContents(mac / path, *contents);
        else
            fs::create_directories(mac / path);
    for (const auto& [path, contents] : ofTheSystem)
        if (contents)
            testing::setContents(mac / path, *contents);
        else
            fs::remove(mac / path);
}

std::vector<std::vector<Disk>> powerCutsIn(const fs::path& mac, const std::function<void()>& run) {
    const std::vector<Step> steps = stepsOf(mac, run);
    const Snapshot atEnd = snapshotOf(mac);
    if (steps.empty()) return {};
    DiskHistory history(steps.front().before);
    std::vector<std::vector<Disk>> cuts;
    std::set<Disk> known;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const Step& step = steps[i];
        const bool isLast = i + 1 == steps.size();
        if (step.call == SystemCall::fsync) history.synchronise(step.before, step.path);
        history.advance(step.before, isLast ? atEnd : steps[i + 1].before);
        if (isLast) known.clear();
        std::vector<Disk>& states = cuts.emplace_back();
        for (Disk& disk : history.afterPowerCut())
            if (known.insert(disk).second) states.push_back(std::move(disk));
    }
    return cuts;
}

}  // namespace brell::trust
