// The knowledge of the sample Mac's launchd: the jobs it has loaded and the user's overrides, kept in one
// file, so that separate processes see each other's changes.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace brell {

struct SimulatedJob {
    std::string file;  // its job file, below the Mac's folder
    std::vector<std::string> arguments;
    std::string state;  // launchd's word for it: "running", "not running", "spawn scheduled"
    std::int64_t runs = 0;
    std::optional<std::int64_t> lastExitCode;  // absent: it never exited
    std::optional<std::int64_t> pid;
    std::int64_t asksLeft = 0;  // while it is leaving: how often it is still listed when asked for
    bool operator==(const SimulatedJob&) const = default;
};

// How a job behaves, loaded or not. Slowness is counted in asks, not in time, so that the same commands
// always get the same answers.
struct JobBehaviour {
    std::int64_t asksToLeave = 0;       // asks for which it stays listed after a bootout
    std::int64_t bootoutAnswer = 0;     // of the bootout that makes it leave: 0 or 36, operation in progress
    std::int64_t bootstrapAnswer = 37;  // of a bootstrap while it is leaving: 37 or 5
    std::optional<std::int64_t> failsWith;  // the exit code with which it ends whenever it is started
    std::int64_t exitTimeout = 5;           // seconds, as launchd shows it; asksToLeave may use it up
    bool operator==(const JobBehaviour&) const = default;
};

struct LaunchdState {
    std::map<std::string, SimulatedJob> jobs;  // all of these by label
    std::map<std::string, bool> overrides;     // true: disabled
    std::map<std::string, JobBehaviour> behaviours;
    std::int64_t nextPid = 4101;
    bool operator==(const LaunchdState&) const = default;
};

// Raise an exception derived from std::exception for a file that can't be read or written or is damaged; one
// that is not there is a launchd that knows nothing.
LaunchdState readLaunchdState(const std::filesystem::path& file);
void writeLaunchdState(const std::filesystem::path& file, const LaunchdState& state);

}  // namespace brell
