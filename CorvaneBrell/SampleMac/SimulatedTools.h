// The command-line tools of the sample Mac: launchctl, mdutil and sfltool, without running anything.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <list>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "BrellCore/Background/CommandRunning.h"
#include "CorvaneBrell/SampleMac/SimulatedLaunchd.h"

namespace brell {

// A fault of one command.
struct ToolFault {
    bool takesEffect;
    std::optional<CommandResult> answer;  // nothing: it does not end and is stopped

    static ToolFault refusing(int exitCode, std::string text) {
        return {false, CommandResult{exitCode, "", std::move(text)}};
    }
    static ToolFault refusingAfterAll(int exitCode, std::string text) {
        return {true, CommandResult{exitCode, "", std::move(text)}};
    }
    static ToolFault lying() { return {false, CommandResult{0, "", ""}}; }
    static ToolFault hanging() { return {false, std::nullopt}; }
    static ToolFault hangingAfterwards() { return {true, std::nullopt}; }
};

class SimulatedTools final : public CommandRunning {
public:
    // root is the Mac's folder, absolute and without links; uid is its user.
    SimulatedTools(std::filesystem::path root, std::uint32_t uid);

    CommandResult run(const AllowedCommand& command) override;
    // One that hangs does so for as long as the patience lasts.
    CommandResult runPatiently(const AllowedCommand& command, const CommandPatience& patience) override;

    // The next command of this kind goes wrong, once.
    void failNext(AllowedCommand::Kind kind, ToolFault fault);

    // Asked before every command, one at a time, what goes wrong with it. It must not run commands itself.
    using Interference = std::function<std::optional<ToolFault>(const AllowedCommand&)>;
    void interfere(Interference interference);

    SimulatedLaunchd& launchd() { return launchd_; }

private:
    std::optional<ToolFault> takeFault(const AllowedCommand& command);
    CommandResult answer(const AllowedCommand& command);
    CommandResult run(const AllowedCommand& command, const std::function<CommandProblem()>& hang);

    const std::filesystem::path root_;
    SimulatedLaunchd launchd_;
    std::mutex mutex_;  // guards the fields below
    std::list<std::pair<AllowedCommand::Kind, ToolFault>> planned_;
    Interference interference_;
};

}  // namespace brell
