// Where one worker tries its points: a Mac that always stands in the same place, because the journal names
// files by their whole path, and copies of it beside.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "Trust/Scenes.h"

namespace brell::trust {

// The contents of the file or folder of this name, by path within it.
std::map<std::string, std::string> below(const std::filesystem::path& folder, const std::string& name);

class Stage {
public:
    explicit Stage(std::filesystem::path folder);

    std::filesystem::path world() const { return folder_ / "mac"; }
    std::filesystem::path tools() const { return folder_ / "tools"; }  // to stand first in PATH

    // Makes the Mac of this scene, as it is before the operation.
    void prepare(const Scene& scene);
    void reset() const { show("prepared"); }

    // Keeps a copy of the Mac as it is now, and brings one back.
    void keep(const std::string& name) const;
    void show(const std::string& name) const;

    // Of the scene prepared last.
    struct Setting {
        Condition original;                 // before Brell changed anything
        std::vector<JournalEntry> entries;  // what the journal holds before the operation
        // Where the operation begins with a damaged journal: what that holds, by path within it.
        std::optional<std::map<std::string, std::string>> damaged;
    };
    const Setting& setting() const { return setting_; }
    // The journal is one that the scene damaged.
    bool isDamagedNow() const;

    std::filesystem::path journalDirectory() const;
    // Where its files lie now: leaving moved them.
    bool hasLeft() const;
    std::filesystem::path journalNow() const {
        return hasLeft() ? trashFor(journalDirectory()) : journalDirectory();
    }

private:
    const std::filesystem::path folder_;
    Setting setting_;
};

// Brell on the Mac as it was prepared, right before the operation: its journal is damaged where the scene
// says so.
struct Ready : Rig {
    Ready(const Stage& stage, const Scene& scene);
};

}  // namespace brell::trust
