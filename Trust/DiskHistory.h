// The states of a disk after a power cut, worked out from the calls of one run.
//
// Everything that was synchronised is there. The bytes written to a file since then may be there up to any
// write, in part, or as zeros of the right length; of the names given and taken in a folder since it was
// synchronised, any may be there and any may be missing. Files that belong to macOS (its preferences,
// launchd's state) are replaced whole by somebody who takes care of that: each may be any of the versions
// there were.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace brell::trust {

// One state of the disk, by path within the Mac.
struct Disk {
    std::map<std::string, std::optional<std::string>> ours;         // nothing: a folder
    std::map<std::string, std::optional<std::string>> ofTheSystem;  // nothing: no such file
    bool systemLags = false;  // one of the system's files is not its newest version
    bool operator<(const Disk& other) const;
    void layDown(const std::filesystem::path& mac) const;  // over a Mac as it was before the run
};

// For each call of the run that changes or synchronises something, every state that a power cut after it may
// leave. Where more than 256 could be combined, those in which at most two things differ from the newest
// state or from the oldest.
std::vector<std::vector<Disk>> powerCutsIn(const std::filesystem::path& mac,
                                           const std::function<void()>& run);

}  // namespace brell::trust
