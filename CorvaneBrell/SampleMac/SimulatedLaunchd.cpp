#include "CorvaneBrell/SampleMac/SimulatedLaunchd.h"

#include <fmt/format.h>

#include <chrono>
#include <stdexcept>
#include <utility>

#include "BrellCore/Journal/AgentCommands.h"
#include "BrellCore/Support/FileLock.h"
#include "CorvaneBrell/SampleMac/LaunchctlWords.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

using namespace std::chrono_literals;
using Kind = AllowedCommand::Kind;

constexpr std::string_view leavingState = "SIGTERMed";

// launchctl's exit codes.
constexpr int noSuchProcess = 3;
constexpr int inputOutputError = 5;
constexpr int fileExists = 17;
constexpr int underWay = 36;
constexpr int noSuchDomain = 112;
constexpr int noSuchService = 113;
constexpr int unsupportedDomain = 125;

CommandResult done(std::string output = {}) {
    return {0, std::move(output), ""};
}

CommandResult failed(std::string_view action, std::int64_t code) {
    const int exitCode = static_cast<int>(code);
    return {exitCode, "", LaunchctlWords::failure(action, exitCode)};
}

JobBehaviour behaviourOf(const LaunchdState& state, const std::string& label) {
    const auto found = state.behaviours.find(label);
    return found == state.behaviours.end() ? JobBehaviour{} : found->second;
}

bool isLeaving(const SimulatedJob& job) {
    return job.state == leavingState;
}

// The state of a job right after launchd has loaded it.
void start(SimulatedJob& job, const LaunchAgentPlist& plist, const JobBehaviour& behaviour,
           LaunchdState& state) {
    job.state = "not running";
    if (!plist.runAtLoad && !plist.keepAlive) return;
    job.runs = 1;
    if (behaviour.failsWith) {
        job.state = plist.keepAlive ? "spawn scheduled" : "not running";
        job.lastExitCode = behaviour.failsWith;
    } else {
        job.state = "running";
        job.pid = state.nextPid;
        state.nextPid += 7;
    }
}

// The path below the folder; nothing for one that is not in it.
std::optional<fs::path> below(const fs::path& folder, const fs::path& path) {
    std::error_code error;
    const fs::path resolved = fs::weakly_canonical(path, error);
    if (error) return std::nullopt;
    const fs::path relative = resolved.lexically_relative(folder);
    return relative.empty() || *relative.begin() == ".." ? std::nullopt : std::optional(relative);
}

}  // namespace

std::vector<std::string> commandLine(const LaunchAgentPlist& plist) {
    if (plist.arguments.empty() && plist.program) return {*plist.program};
    return plist.arguments;
}

SimulatedLaunchd::SimulatedLaunchd(fs::path root, std::uint32_t uid) : root_(std::move(root)), uid_(uid) {}

fs::path SimulatedLaunchd::stateFile(const fs::path& root) {
    return root / "private/var/db/launchd.plist";
}

// Gives what the action makes of the state, and keeps what it changes in it.
template <class Action>
auto SimulatedLaunchd::withState(Action&& action) {
    const fs::path file = stateFile(root_);
    const auto lock = FileLock::acquire(file.parent_path() / ".launchd.lock", 30s);
    if (!lock) throw std::runtime_error(file.string() + " is in use");
    const LaunchdState before = readLaunchdState(file);
    LaunchdState state = before;
    const auto result = action(state);
    if (state != before) writeLaunchdState(file, state);
    return result;
}

CommandResult SimulatedLaunchd::run(const AllowedCommand& command) {
    return withState([&](LaunchdState& state) { return answer(command, state); });
}

void SimulatedLaunchd::setBehaviour(const std::string& label, const JobBehaviour& behaviour) {
    withState(
        [&](LaunchdState& state) { return state.behaviours.insert_or_assign(label, behaviour).second; });
}

CommandResult SimulatedLaunchd::answer(const AllowedCommand& command, LaunchdState& state) const {
    if (command.kind == Kind::launchctlPrint) return print(command, state);
    const bool isOurs = command.subject == AgentCommands::guiDomain(uid_);
    switch (command.kind) {
        case Kind::launchctlPrintDisabled:
            if (!isOurs) return {noSuchDomain, "", "Bad request.\nCould not find domain\n"};
            return done(LaunchctlWords::overrides(state));
        case Kind::launchctlBootout:
            return isOurs ? bootout(command.item, state) : failed("Boot-out", unsupportedDomain);
        case Kind::launchctlBootstrap:
            return isOurs ? bootstrap(command.item, state) : failed("Bootstrap", unsupportedDomain);
        case Kind::launchctlEnable:
        case Kind::launchctlDisable:
            if (!isOurs) return failed("Could not change the override", unsupportedDomain);
            state.overrides[command.item] = command.kind == Kind::launchctlDisable;
            return done();
        case Kind::launchctlPrint:
        case Kind::mdutilStatus:
        case Kind::sfltoolDumpBTM: break;
    }
    throw std::logic_error("not one of launchctl's commands: " + command.rendered());
}

CommandResult SimulatedLaunchd::print(const AllowedCommand& command, LaunchdState& state) const {
    const std::string domain = AgentCommands::guiDomain(uid_);
    if (command.subject == domain || command.subject == domain + "/")
        return done(LaunchctlWords::services(domain, state));
    if (!command.subject.starts_with(domain + "/"))
        return {noSuchDomain, "", "Bad request.\nCould not find domain\n"};
    const std::string label = command.subject.substr(domain.size() + 1);
    const auto found = state.jobs.find(label);
    if (found != state.jobs.end() && isLeaving(found->second) && found->second.asksLeft-- == 0) {
        state.jobs.erase(found);
        return print(command, state);
    }
    if (found == state.jobs.end())
        return {noSuchService, "",
                fmt::format("Bad request.\nCould not find service \"{}\" in domain for user gui: {}\n", label,
                            uid_)};
    return done(LaunchctlWords::service(domain, label, found->second, behaviourOf(state, label),
                                        root_ / found->second.file));
}

CommandResult SimulatedLaunchd::bootout(const std::string& label, LaunchdState& state) const {
    const auto found = state.jobs.find(label);
    if (found == state.jobs.end()) return failed("Boot-out", noSuchProcess);
    SimulatedJob& job = found->second;
    if (isLeaving(job)) return failed("Boot-out", underWay);
    const JobBehaviour behaviour = behaviourOf(state, label);
    if (behaviour.asksToLeave == 0) {
        state.jobs.erase(found);
        return done();
    }
    job.state = leavingState;
    job.asksLeft = behaviour.asksToLeave;
    return behaviour.bootoutAnswer == 0 ? done() : failed("Boot-out", behaviour.bootoutAnswer);
}

CommandResult SimulatedLaunchd::bootstrap(const fs::path& file, LaunchdState& state) const {
    const auto inside = below(root_, file);
    if (!inside) return failed("Bootstrap", inputOutputError);
    const LaunchAgentPlist plist = LaunchAgentPlist::read(root_ / *inside);
    if (!plist.label) return failed("Bootstrap", inputOutputError);
    const JobBehaviour behaviour = behaviourOf(state, *plist.label);
    if (const auto known = state.jobs.find(*plist.label); known != state.jobs.end())
        return failed("Bootstrap", isLeaving(known->second) ? behaviour.bootstrapAnswer : fileExists);
    const auto override = state.overrides.find(*plist.label);
    if (override == state.overrides.end() ? plist.isDisabled : override->second)
        return failed("Bootstrap", inputOutputError);

    SimulatedJob job;
    job.file = inside->generic_string();
    job.arguments = commandLine(plist);
    start(job, plist, behaviour, state);
    state.jobs.emplace(*plist.label, std::move(job));
    return done();
}

}  // namespace brell
