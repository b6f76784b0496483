// The sample Mac's launchd: keeps state, and answers in launchctl's own words, layout and exit codes.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "BrellCore/Background/CommandRunning.h"
#include "BrellCore/Background/LaunchAgentPlist.h"
#include "CorvaneBrell/SampleMac/LaunchdState.h"

namespace brell {

// Several objects, threads and processes may work on one Mac. Everything raises an exception derived from
// std::exception when the state can't be read or written.
class SimulatedLaunchd {
public:
    // root is the Mac's folder, absolute and without links; uid is its user.
    SimulatedLaunchd(std::filesystem::path root, std::uint32_t uid);

    // The command has passed its validation and is one of launchctl's.
    CommandResult run(const AllowedCommand& command);

    void setBehaviour(const std::string& label, const JobBehaviour& behaviour);

    // Where the state is kept below a Mac's folder.
    static std::filesystem::path stateFile(const std::filesystem::path& root);

private:
    template <class Action>
    auto withState(Action&& action);
    CommandResult answer(const AllowedCommand& command, LaunchdState& state) const;
    CommandResult print(const AllowedCommand& command, LaunchdState& state) const;
    CommandResult bootout(const std::string& label, LaunchdState& state) const;
    CommandResult bootstrap(const std::filesystem::path& file, LaunchdState& state) const;

    const std::filesystem::path root_;
    const std::uint32_t uid_;
};

// The command line that launchd runs for a job: its arguments, or its program alone.
std::vector<std::string> commandLine(const LaunchAgentPlist& plist);

}  // namespace brell
