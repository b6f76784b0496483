// launchctl's output as records.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "BrellCore/Background/CommandRunning.h"
#include "BrellCore/Journal/AgentCapture.h"

namespace brell {

// One job as launchd describes it.
struct LoadedState {
    enum class Kind {
        loaded,
        notLoaded,  // launchd does not know it in the domain
        unknown,    // it could not be found out, or was not asked
    };

    Kind kind = Kind::unknown;
    // The rest is empty unless it is loaded.
    std::string state;  // launchd's own words: "running", "spawn scheduled"
    std::optional<std::int64_t> runs;
    std::optional<std::int64_t> lastExitCode;  // where a signal ended it, 128 and the signal's number
    std::optional<std::int64_t> pid;
    // The place it was loaded from: its job file, or words in parentheses for one that an app handed over.
    std::optional<std::string> path = {};
    // In seconds: how long it may take to end before launchd kills it.
    std::optional<std::int64_t> exitTimeout = {};

    static LoadedState notLoaded() { return {Kind::notLoaded, {}, {}, {}, {}}; }
    static LoadedState unknown() { return {}; }

    bool isLoaded() const { return kind == Kind::loaded; }
    bool isUnknown() const { return kind == Kind::unknown; }
    // launchd keeps restarting a job that keeps failing.
    bool isCrashLooping() const;
    bool operator==(const LoadedState&) const = default;
};

// Labels that are not in the map have no override.
using AgentOverrides = std::map<std::string, AgentOverride, std::less<>>;

namespace LaunchctlParser {

// The output of print-disabled. Lines that are no override are skipped, and all behind the list of overrides;
// the last one for a label counts.
AgentOverrides parsePrintDisabled(std::string_view text);

// The answer to print of one service. A line of a nested block, of an argument or of anything else that is
// printed raw over several lines is not taken for one of the job's own.
LoadedState parsePrint(const CommandResult& result);

}  // namespace LaunchctlParser

}  // namespace brell
