// A launchd job file, read for what it says about when a job runs and what it starts.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace brell {

struct LaunchAgentPlist {
    std::string path;
    std::optional<std::string> label;
    std::optional<std::string> program;
    std::vector<std::string> arguments;
    bool runAtLoad = false;
    bool keepAlive = false;  // also under conditions
    std::optional<std::int64_t> startInterval;
    bool hasCalendarInterval = false;
    std::vector<std::string> associatedBundleIDs;
    std::optional<std::uint32_t> fileOwnerUID;

    // Never raises: of a file that can't be read, is not a property list or is beyond all measure, only the
    // path and the owner are known.
    static LaunchAgentPlist read(const std::filesystem::path& file);

    std::optional<std::string> executable() const;
    std::string trigger() const;  // when the job runs: "at login, every 3600 s"
    bool operator==(const LaunchAgentPlist&) const = default;
};

}  // namespace brell
