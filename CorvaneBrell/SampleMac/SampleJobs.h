// The job files of the sample Mac and what its launchd knows of them, as tables.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <variant>
#include <vector>

#include "BrellCore/Journal/AgentCapture.h"
#include "BrellCore/Support/PropertyList.h"
#include "CorvaneBrell/SampleMac/LaunchdState.h"

namespace brell::SampleContents {

// A job that launchd has loaded.
struct JobState {
    std::string_view state;
    std::int64_t runs;
    std::optional<std::int64_t> lastExitCode;
    std::optional<std::int64_t> pid;
};

// One of the user's own agents.
struct SampleAgent {
    std::string_view fileName;
    std::variant<PlistDictionary, std::string_view> contents;  // written as XML, or bytes as they are
    std::optional<JobState> state;                             // absent: not loaded
    AgentOverride override = AgentOverride::absent;
    JobBehaviour behaviour = {};
    bool isLink = false;  // to a file in the folder Dotfiles of the home
};
std::vector<SampleAgent> userAgents();

// An agent that an administrator installed, or a daemon.
struct SystemJob {
    std::string_view path;  // below the Mac's folder
    PlistDictionary job;
};
std::vector<SystemJob> systemJobs();

}  // namespace brell::SampleContents
