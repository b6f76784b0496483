#include "CorvaneBrell/SampleMac/SimulatedTools.h"

#include <chrono>
#include <exception>
#include <thread>

#include "BrellCore/Support/AwakeClock.h"
#include "BrellCore/Support/FileContents.h"
#include "CorvaneBrell/SampleMac/SampleContents.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

constexpr std::size_t mostDumpBytes = 64 << 20;

CommandResult dumpTasks(const fs::path& root) {
    const auto dump = readFile(SampleContents::taskDumpFile(root), mostDumpBytes);
    if (!dump) return {1, "", "Error: the background task database is not there\n"};
    return {0, dump->bytes, ""};
}

CommandResult indexStatus(const std::string& volume) {
    if (const auto text = SampleContents::mdutilAnswer(volume)) return {0, *text, ""};
    return {1, "Error: could not resolve path `" + volume + "'.\n", ""};
}

}  // namespace

SimulatedTools::SimulatedTools(fs::path root, std::uint32_t uid)
    : root_(std::move(root)), launchd_(root_, uid) {}

CommandResult SimulatedTools::run(const AllowedCommand& command) {
    return run(command, [] { return CommandProblem::timedOut; });
}

CommandResult SimulatedTools::runPatiently(const AllowedCommand& command, const CommandPatience& patience) {
    return run(command, [&] {
        const auto end = AwakeClock::now() + std::chrono::duration<double>(patience.seconds);
        while (AwakeClock::now() < end) {
            if (patience.isCancelled && patience.isCancelled()) return CommandProblem::cancelled;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return CommandProblem::timedOut;
    });
}

CommandResult SimulatedTools::run(const AllowedCommand& command,
                                  const std::function<CommandProblem()>& hang) {
    command.validate();
    const auto fault = takeFault(command);
    if (!fault) return answer(command);
    if (fault->takesEffect) answer(command);
    if (!fault->answer) throw CommandError({hang(), command.rendered()});
    return *fault->answer;
}

void SimulatedTools::failNext(AllowedCommand::Kind kind, ToolFault fault) {
    const std::lock_guard lock(mutex_);
    planned_.emplace_back(kind, std::move(fault));
}

void SimulatedTools::interfere(Interference interference) {
    const std::lock_guard lock(mutex_);
    interference_ = std::move(interference);
}

std::optional<ToolFault> SimulatedTools::takeFault(const AllowedCommand& command) {
    const std::lock_guard lock(mutex_);
    for (auto planned = planned_.begin(); planned != planned_.end(); ++planned) {
        if (planned->first != command.kind) continue;
        ToolFault fault = std::move(planned->second);
        planned_.erase(planned);
        return fault;
    }
    return interference_ ? interference_(command) : std::nullopt;
}

CommandResult SimulatedTools::answer(const AllowedCommand& command) try {
    switch (command.kind) {
        case AllowedCommand::Kind::launchctlPrint:
        case AllowedCommand::Kind::launchctlPrintDisabled:
        case AllowedCommand::Kind::launchctlBootout:
        case AllowedCommand::Kind::launchctlBootstrap:
        case AllowedCommand::Kind::launchctlEnable:
        case AllowedCommand::Kind::launchctlDisable: return launchd_.run(command);
        case AllowedCommand::Kind::mdutilStatus: return indexStatus(command.subject);
        case AllowedCommand::Kind::sfltoolDumpBTM: break;
    }
    return dumpTasks(root_);
} catch (const std::exception& error) {
    // As when a real tool can't be started: the sample Mac itself is not usable.
    throw CommandError({CommandProblem::cannotStart, error.what()});
}

}  // namespace brell
