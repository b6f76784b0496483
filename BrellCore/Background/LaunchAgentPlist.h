// A launchd job file, read for what it says about when a job runs and what it starts.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace brell {

// The choice whether a job file that is a link to another folder is read. macOS may ask the user before it
// lets a program look into that folder, Documents for one; nothing there is looked at otherwise.
enum class LinksOut { followed, left };

struct LaunchAgentPlist {
    std::string path;
    std::optional<std::string> label;
    std::optional<std::string> program;
    std::vector<std::string> arguments;
    bool runAtLoad = false;
    bool keepAlive = false;  // also under conditions
    bool isDisabled = false;
    bool isForOtherSessions = false;  // none with a desktop: such a job is in another domain of launchd's
    std::optional<std::int64_t> startInterval;
    bool hasCalendarInterval = false;
    std::vector<std::string> associatedBundleIDs;
    std::optional<std::uint32_t> fileOwnerUID;
    std::optional<std::string> leadsTo = {};  // of a link that was left; nothing else is known then

    // Never raises: of a file that can't be read, is not a property list or is beyond all measure, only the
    // path and the owner are known.
    static LaunchAgentPlist read(const std::filesystem::path& file, LinksOut links = LinksOut::followed);
    // The same, but raises ReadError where the system does not let an ordinary file be read: nothing is known
    // of it then, not even that it has no label.
    static LaunchAgentPlist readOrRaise(const std::filesystem::path& file, LinksOut links);

    std::optional<std::string> executable() const;
    std::string trigger() const;  // when the job runs: "at login, every 3600 s"; or that it is a link
    bool operator==(const LaunchAgentPlist&) const = default;
};

}  // namespace brell
