// launchd's knowledge of background jobs, read without changing anything.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "BrellCore/Background/CommandRunning.h"
#include "BrellCore/Background/LaunchAgentPlist.h"
#include "BrellCore/Background/LaunchctlParser.h"
#include "BrellCore/Journal/AgentCommands.h"
#include "BrellCore/Support/EnumText.h"

namespace brell {

enum class AgentScope {
    user,          // the user's own, in the home folder
    systemAgent,   // for every user, installed by an administrator
    systemDaemon,  // for the machine
};
template <>
inline constexpr std::array<std::string_view, 3> enumTexts<AgentScope>{"user", "systemAgent", "systemDaemon"};

struct LaunchAgentRecord {
    LaunchAgentPlist plist;
    AgentScope scope;
    AgentOverride override;
    LoadedState loaded;

    const std::string& id() const { return plist.path; }
    const std::optional<std::string>& label() const { return plist.label; }
    bool operator==(const LaunchAgentRecord&) const = default;
};

// launchctl ran and refused.
struct LaunchctlFailure {
    std::string word;    // its first argument
    std::string output;  // all it printed
    bool operator==(const LaunchctlFailure&) const = default;
};
std::string describe(const LaunchctlFailure& failure);  // of a long output the beginning

class LaunchctlError final : public FailureError<LaunchctlFailure> {
public:
    using FailureError::FailureError;
    ~LaunchctlError() override;
};

// Runs commands, so it belongs into background work.
struct LaunchAgentReader {
    CommandRunning& runner;
    std::filesystem::path home;
    std::uint32_t uid;
    std::filesystem::path systemRoot = "/";  // holds Library/LaunchAgents and Library/LaunchDaemons

    std::filesystem::path userAgentsDirectory() const { return home / "Library/LaunchAgents"; }
    std::string domain() const { return AgentCommands::guiDomain(uid); }

    // The job files of a folder in the order of their names. A file that can't be listed is left out and
    // gives the error.
    static std::vector<std::filesystem::path> jobFiles(const std::filesystem::path& folder,
                                                       std::error_code& error);
    static std::vector<LaunchAgentPlist> plists(const std::filesystem::path& folder,
                                                LinksOut links = LinksOut::followed);

    // The override that comes to the same as what launchd goes by: where it holds none, the file's own word.
    static AgentOverride inForce(AgentOverride held, const LaunchAgentPlist& plist);

    // Raises LaunchctlError when launchctl refuses, and what the runner raises.
    AgentOverrides overrides() const;

    // Never raises: unknown when launchd can't be asked, or not in the domain of the desktop.
    LoadedState loadedState(const LaunchAgentPlist& plist) const;

    // The user's job files, each with its override but with loaded unknown: launchd is asked once for all of
    // them. Links to elsewhere are not followed. Raises what overrides() raises; nothing else that goes wrong
    // hides an agent.
    std::vector<LaunchAgentRecord> listUserAgents() const;
    // The same with the loadedState of each, for which launchd is asked one by one.
    std::vector<LaunchAgentRecord> userAgents() const;

    // No command is run for these: they live in domains that a user's process does not inspect.
    std::vector<LaunchAgentRecord> systemAgents() const;
};

}  // namespace brell
