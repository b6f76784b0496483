#include "Trust/DiskHistory.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <functional>
#include <set>
#include <tuple>

#include "Tests/Support/Testing.h"

using brell::testing::SystemCall;

namespace fs = std::filesystem;

namespace brell::trust {

namespace {

constexpr const char* library = "Users/sam/Library";
constexpr const char* preferences = "Users/sam/Library/Preferences";
constexpr const char* launchd = "private/var/db/launchd.plist";
constexpr std::size_t mostCombinations = 256;

bool isHidden(const fs::path& path) {
    return path.filename().string().starts_with('.');
}

std::string parentOf(const std::string& path) {
    return fs::path(path).parent_path().string();
}

ino_t inodeOf(const fs::path& path) {
    struct stat status {};
    ::lstat(path.c_str(), &status);
    return status.st_ino;
}

bool changesTheDisk(SystemCall call) {
    constexpr std::array changing{SystemCall::open, SystemCall::write,  SystemCall::fsync, SystemCall::rename,
                                  SystemCall::link, SystemCall::unlink, SystemCall::mkdir};
    return std::find(changing.begin(), changing.end(), call) != changing.end();
}

// All that a file that was not synchronised may hold, the newest first.
std::vector<std::string> possibleContents(const std::vector<std::string>& versions) {
    std::vector<std::string> contents(versions.rbegin(), versions.rend());
    if (versions.size() < 2) return contents;
    const std::string& newest = versions.back();
    const std::string& oldest = versions.front();
    const std::size_t kept = newest.starts_with(oldest) ? oldest.size() : 0;
    contents.push_back(newest.substr(0, kept + (newest.size() - kept) / 2));
    contents.push_back(newest.substr(0, kept) + std::string(newest.size() - kept, '\0'));
    return contents;
}

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
    for (std::size_t length = count + 1; length-- > 0;) {
        masks.emplace_back(length, true).resize(count, false);
    }
    for (std::size_t missing = 0; missing < count; ++missing) {
        masks.emplace_back(count, true)[missing] = false;
    }
    return masks;
}

// Settings of dials with so many positions each, the first of which is the newest.
std::vector<std::vector<std::size_t>> combinations(const std::vector<std::size_t>& positions) {
    std::size_t product = 1;
    for (const std::size_t count : positions) product = std::min(product * count, mostCombinations + 1);
    std::vector<std::vector<std::size_t>> all;
    if (product <= mostCombinations) {
        std::vector<std::size_t> settings(positions.size(), 0);
        for (std::size_t left = product; left-- > 0;) {
            all.push_back(settings);
            for (std::size_t i = 0; i < settings.size() && ++settings[i] == positions[i]; ++i)
                settings[i] = 0;
        }
        return all;
    }
    std::set<std::vector<std::size_t>> found;
    const std::vector<std::size_t> newest(positions.size(), 0);
    std::vector<std::size_t> oldest;
    for (const std::size_t count : positions) oldest.push_back(count - 1);
    for (const auto& base : {newest, oldest})
        for (std::size_t one = 0; one < positions.size(); ++one)
            for (std::size_t other = one; other < positions.size(); ++other)
                for (std::size_t i = 0; i < positions[one]; ++i)
                    for (std::size_t j = 0; j < positions[other]; ++j) {
                        std::vector<std::size_t> settings = base;
                        settings[one] = i;
                        settings[other] = j;
                        found.insert(std::move(settings));
                    }
    all.assign(found.begin(), found.end());
    return all;
}

}  // namespace

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
    for (const auto& entry : fs::directory_iterator(mac / preferences))
        if (!isHidden(entry.path()))
            snapshot.ofTheSystem[entry.path().lexically_relative(mac).string()] =
                testing::contentsOf(entry.path());
    snapshot.ofTheSystem[launchd] = testing::contentsOf(mac / launchd);
    return snapshot;
}

DiskRecorder::DiskRecorder(const fs::path& mac) : CallObserver(mac), mac_(mac) {
    start();
}
DiskRecorder::~DiskRecorder() {
    stop();
}

int DiskRecorder::sees(SystemCall call, const std::string& path) {
    if (changesTheDisk(call))
        steps.push_back({call, fs::path(path).lexically_relative(mac_).string(), snapshotOf(mac_)});
    return 0;
}

bool Disk::operator<(const Disk& other) const {
    return std::tie(ours, ofTheSystem, systemLags) <
           std::tie(other.ours, other.ofTheSystem, other.systemLags);
}

void Disk::layDown(const fs::path& mac) const {
    std::vector<fs::path> old;
    for (const auto& entry : fs::directory_iterator(mac / library)) old.push_back(entry.path());
    for (const fs::path& path : old)
        if (path.filename() != "Preferences" && path.filename() != "LaunchAgents") fs::remove_all(path);
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

// A disk in the making, and what of each folder's names and of each file's contents is on it.
struct DiskHistory::Choice {
    Disk disk;
    std::map<Object, std::vector<bool>> done;
    std::map<Object, std::string> contents;
};

// One thing that may be in so many ways, the first of which is the newest.
struct DiskHistory::Dial {
    std::size_t positions;
    std::function<void(Choice& choice, std::size_t position)> turn;
};

std::map<std::string, DiskHistory::Object> DiskHistory::Folder::with(const std::vector<bool>& done) const {
    std::map<std::string, Object> names = synchronised;
    for (std::size_t i = 0; i < pending.size(); ++i)
        if (done[i])
            for (const auto& [name, object] : pending[i]) {
                names.erase(name);
                if (object) names.emplace(name, *object);
            }
    return names;
}

DiskHistory::DiskHistory(const Snapshot& atFirst) {
    noteNewObjects({}, atFirst);
    noteNames({}, atFirst);
    root_ = objectOf(atFirst.ours.at(library));
    for (auto& [path, contents] : atFirst.ofTheSystem) ofTheSystem_[path] = {contents};
    for (auto& [object, file] : files_) file.versions = {file.versions.back()};
    for (auto& [object, folder] : folders_) {
        folder.synchronised = folder.with(std::vector<bool>(folder.pending.size(), true));
        folder.pending.clear();
    }
}

void DiskHistory::advance(const Snapshot& before, SystemCall call, const std::string& path,
                          const Snapshot& after) {
    if (call == SystemCall::fsync) synchronise(before, path);
    noteContents(before, after);
    noteNewObjects(before, after);
    noteNames(before, after);
    for (auto& [file, contents] : after.ofTheSystem) {
        auto& versions = ofTheSystem_.try_emplace(file, 1, std::nullopt).first->second;
        if (versions.back() != contents) versions.push_back(contents);
    }
}

void DiskHistory::synchronise(const Snapshot& now, const std::string& path) {
    const auto node = now.ours.find(path);
    if (node == now.ours.end()) return;
    const Object object = objectOf(node->second);
    if (!node->second.isFolder) {
        files_[object].versions = {files_[object].versions.back()};
        return;
    }
    Folder& folder = folders_[object];
    folder.synchronised = folder.with(std::vector<bool>(folder.pending.size(), true));
    folder.pending.clear();
}

// An inode that had no name before is a new object: its number may have been somebody else's.
void DiskHistory::noteNewObjects(const Snapshot& before, const Snapshot& after) {
    std::set<ino_t> known;
    for (const auto& [path, node] : before.ours) known.insert(node.inode);
    for (const auto& [path, node] : after.ours) {
        if (!known.insert(node.inode).second) continue;
        const Object object = next_++;
        objects_[node.inode] = object;
        if (node.isFolder) {
            folders_[object];
            continue;
        }
        files_[object].versions = {std::string()};
        if (!node.contents.empty()) files_[object].versions.push_back(node.contents);
    }
}

void DiskHistory::noteContents(const Snapshot& before, const Snapshot& after) {
    std::map<ino_t, std::string> old;
    for (const auto& [path, node] : before.ours)
        if (!node.isFolder) old.emplace(node.inode, node.contents);
    for (const auto& [path, node] : after.ours)
        if (const auto known = old.find(node.inode); known != old.end() && known->second != node.contents)
            files_[objectOf(node)].versions.push_back(node.contents);
}

void DiskHistory::noteNames(const Snapshot& before, const Snapshot& after) {
    std::map<Object, Naming> changed;
    // What lies in a folder that was renamed stays in it.
    const auto folderOf = [&](const Snapshot& snapshot, const std::string& path) {
        return objectOf(snapshot.ours.at(parentOf(path)));
    };
    const auto nameOf = [](const std::string& path) { return fs::path(path).filename().string(); };
    for (const auto& [path, node] : before.ours)
        if (path != library && !after.ours.contains(path))
            changed[folderOf(before, path)][nameOf(path)] = std::nullopt;
    for (const auto& [path, node] : after.ours) {
        if (path == library) continue;
        const auto old = before.ours.find(path);
        if (old == before.ours.end() || old->second.inode != node.inode)
            changed[folderOf(after, path)][nameOf(path)] = objectOf(node);
    }
    for (auto& [folder, naming] : changed) folders_[folder].pending.push_back(std::move(naming));
}

std::vector<DiskHistory::Dial> DiskHistory::dials() const {
    std::vector<Dial> dials;
    for (const auto& [object, folder] : folders_)
        if (const auto masks = possiblyDone(folder.pending.size()); !folder.pending.empty())
            dials.push_back({masks.size(), [object = object, masks](Choice& choice, std::size_t position) {
                                 choice.done[object] = masks[position];
                             }});
    for (const auto& [object, file] : files_)
        if (const auto contents = possibleContents(file.versions); contents.size() > 1)
            dials.push_back(
                {contents.size(), [object = object, contents](Choice& choice, std::size_t position) {
                     choice.contents[object] = contents[position];
                 }});
    for (const auto& [path, versions] : ofTheSystem_)
        dials.push_back(
            {versions.size(), [&path = path, &versions = versions](Choice& choice, std::size_t position) {
                 choice.disk.ofTheSystem[path] = versions.rbegin()[static_cast<std::ptrdiff_t>(position)];
                 choice.disk.systemLags |= position != 0;
             }});
    return dials;
}

Disk DiskHistory::diskWith(const std::vector<Dial>& dials, const std::vector<std::size_t>& settings) const {
    Choice choice;
    for (std::size_t i = 0; i < dials.size(); ++i) dials[i].turn(choice, settings[i]);
    lay(choice, root_, library);
    return std::move(choice.disk);
}

void DiskHistory::lay(Choice& choice, Object object, const std::string& path) const {
    Disk& disk = choice.disk;
    const auto file = files_.find(object);
    if (file != files_.end()) {
        const auto chosen = choice.contents.find(object);
        disk.ours[path] = chosen == choice.contents.end() ? file->second.versions.back() : chosen->second;
        return;
    }
    disk.ours[path] = std::nullopt;
    const auto done = choice.done.find(object);
    const Folder& folder = folders_.at(object);
    for (const auto& [name, child] :
         folder.with(done == choice.done.end() ? std::vector<bool>() : done->second))
        lay(choice, child, path + "/" + name);
}

std::vector<Disk> DiskHistory::afterPowerCut() const {
    const std::vector<Dial> all = dials();
    std::vector<std::size_t> positions;
    for (const Dial& dial : all) positions.push_back(dial.positions);
    std::vector<Disk> disks;
    for (const auto& settings : combinations(positions)) disks.push_back(diskWith(all, settings));
    return disks;
}

}  // namespace brell::trust
