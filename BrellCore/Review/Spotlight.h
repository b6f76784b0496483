// Spotlight's indexing of each volume, which is only read.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "BrellCore/Background/CommandRunning.h"

namespace brell {

struct VolumeIndexStatus {
    std::string volume;            // where it is mounted
    std::optional<bool> indexing;  // absent when the answer was neither enabled nor disabled
    std::string raw;               // the tool's own words, on one line; or why there are none

    const std::string& id() const { return volume; }
    bool operator==(const VolumeIndexStatus&) const = default;
};

namespace MdutilParser {

// Every volume in the output of mdutil -s, in its order. Text before the first one is skipped.
std::vector<VolumeIndexStatus> parse(std::string_view text);

}  // namespace MdutilParser

// Runs commands, so it belongs into background work.
struct SpotlightStatusReader {
    CommandRunning& runner;

    // "/" and the other volumes by name, as paths below "/Volumes". root is the folder in which Volumes is
    // looked for.
    static std::vector<std::string> mountedVolumes(const std::filesystem::path& root = "/");

    // One for each volume, in the order given. Never raises: a volume that can't be asked has no `indexing`
    // and says why, and the others are asked all the same.
    std::vector<VolumeIndexStatus> statuses(const std::vector<std::string>& volumes) const;
};

}  // namespace brell
