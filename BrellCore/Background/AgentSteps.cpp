#include "BrellCore/Background/AgentSteps.h"

#include <algorithm>
#include <array>
#include <thread>
#include <utility>

#include "BrellCore/Background/JobPath.h"
#include "BrellCore/Support/Lines.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

using namespace std::chrono_literals;
constexpr auto patience = 5s;
constexpr auto mostPatience = 30s;
constexpr auto quietFor = 1s;  // most jobs are gone by then
constexpr auto pause = 200ms;

// launchctl's exit codes; `launchctl error CODE` prints their words.
constexpr std::array notLoadedCodes{3, 113};  // no such process, could not find service
constexpr int underWayCode = 36;              // operation now in progress
constexpr std::array unclearCodes{5, 17,
                                  37};  // input/output error, file exists, operation already in progress

AgentToggleError error(AgentToggleProblem problem, std::string text) {
    return AgentToggleError({problem, std::move(text)});
}

AgentToggleError commandError(const AllowedCommand& command, const std::string& output) {
    return error(AgentToggleProblem::command,
                 command.rendered() + ": " + excerpt(stripped(output), mostOfASentence));
}

bool saysNotLoaded(const CommandResult& result) {
    const std::string output = result.output();
    return std::find(notLoadedCodes.begin(), notLoadedCodes.end(), result.exitCode) != notLoadedCodes.end() ||
           output.find("No such process") != std::string::npos ||
           output.find("Could not find service") != std::string::npos;
}

std::string words(bool loaded) {
    return loaded ? "loaded" : "not loaded";
}

// launchd kills a job whose exit timeout is over, which then is gone within moments. A timeout of 0 is none.
std::chrono::seconds patienceWith(const LoadedState& loaded) {
    if (!isLeaving(loaded) || !loaded.exitTimeout) return patience;
    if (*loaded.exitTimeout == 0) return mostPatience;
    const std::int64_t most = (mostPatience - patience).count();
    return patience + std::chrono::seconds(std::clamp(*loaded.exitTimeout, std::int64_t{0}, most));
}

bool holds(AgentCommand::When when, bool isLoaded) {
    switch (when) {
        case AgentCommand::When::ifLoaded: return isLoaded;
        case AgentCommand::When::ifNotLoaded: return !isLoaded;
        case AgentCommand::When::always: break;
    }
    return true;
}

}  // namespace

bool isLeaving(const LoadedState& loaded) {
    return loaded.isLoaded() && loaded.state.starts_with("SIG");  // the signal is its state: "SIGTERMed"
}

bool isLoadedFrom(const LoadedState& loaded, const std::string& plistPath) {
    if (!loaded.isLoaded() || !loaded.path) return loaded.isLoaded();
    std::error_code unknown;
    return resolvedPath(*loaded.path) == resolvedPath(plistPath) ||
           std::filesystem::equivalent(*loaded.path, plistPath, unknown);  // by way of another volume's path
}

AllowedCommand allowedCommand(AgentCommand::Verb verb, const std::string& domain, const std::string& label,
                              const std::string& jobFile) {
    switch (verb) {
        case AgentCommand::Verb::bootout: return AllowedCommand::launchctlBootout(domain, label);
        case AgentCommand::Verb::enable: return AllowedCommand::launchctlEnable(domain, label);
        case AgentCommand::Verb::disable: return AllowedCommand::launchctlDisable(domain, label);
        case AgentCommand::Verb::bootstrap: break;
    }
    return AllowedCommand::launchctlBootstrap(domain, jobFile);
}

Waiting Waiting::real() {
    return {AwakeClock::now, [](std::chrono::milliseconds time) { std::this_thread::sleep_for(time); }};
}

AgentSteps::AgentSteps(CommandRunning& runner, Waiting waiting, std::string domain, std::string label)
    : runner_(runner), waiting_(std::move(waiting)), domain_(std::move(domain)), label_(std::move(label)) {}

AgentState AgentSteps::currentState() {
    return currentState(overrides());
}

AgentOverrides AgentSteps::overrides() {
    const AllowedCommand askOverrides = AllowedCommand::launchctlPrintDisabled(domain_);
    const CommandResult answer = run(askOverrides);
    if (!answer.succeeded()) throw commandError(askOverrides, answer.output());
    // Even without any override the real one names the list.
    if (stripped(answer.stdoutText).empty()) throw commandError(askOverrides, "it answered nothing");
    return LaunchctlParser::parsePrintDisabled(answer.stdoutText);
}

AgentState AgentSteps::currentState(const AgentOverrides& overrides) {
    const auto override = overrides.find(label_);
    const LoadedState loaded =
        LaunchctlParser::parsePrint(run(AllowedCommand::launchctlPrint(domain_ + "/" + label_)));
    if (loaded.isUnknown())
        throw error(AgentToggleProblem::refused,
                    "launchd could not be asked whether " + label_ + " is loaded.");
    seen_ = loaded;
    return {override == overrides.end() ? AgentOverride::absent : override->second, loaded};
}

AgentState AgentSteps::settledState() {
    const auto since = waiting_.now();
    AgentState state = currentState();
    while (isLeaving(state.loaded) && waits(since)) state = currentState();
    return state;
}

// Sleeps a moment; false when the time is over.
bool AgentSteps::waits(AwakeClock::time_point since) {
    const auto waited = waiting_.now() - since;
    if (waited >= patienceWith(seen_)) return false;
    if (waited >= quietFor && isLeaving(seen_) && waiting_.tell && !std::exchange(hasTold_, true))
        waiting_.tell(label_, patienceWith(seen_));
    waiting_.sleep(pause);
    return true;
}

void AgentSteps::carryOut(const AgentPlan& plan, bool isLoaded, const std::string& jobFile) {
    for (const AgentCommand& step : plan.commands) {
        if (!holds(step.when, isLoaded)) continue;
        const AllowedCommand command = allowedCommand(step.verb, domain_, label_, jobFile);
        switch (step.verb) {
            case AgentCommand::Verb::bootout: bootout(command); break;
            case AgentCommand::Verb::bootstrap: bootstrap(command); break;
            case AgentCommand::Verb::enable:
            case AgentCommand::Verb::disable: runStep(command); break;
        }
    }
    expect(plan.target);
}

void AgentSteps::bootout(const AllowedCommand& command) {
    const CommandResult result = run(command);
    if (saysNotLoaded(result)) return;
    if (!result.succeeded() && result.exitCode != underWayCode) throw commandError(command, result.output());
    bootedOut_ = true;
}

void AgentSteps::bootstrap(const AllowedCommand& command) {
    const std::string& jobFile = command.item;
    for (bool triedBefore = false;; triedBefore = true) {
        const CommandResult result = run(command);
        if (result.succeeded()) return;
        const bool unclear =
            std::find(unclearCodes.begin(), unclearCodes.end(), result.exitCode) != unclearCodes.end();
        if (!unclear) throw commandError(command, result.output());
        const LoadedState loaded = settledState().loaded;
        if (isLoadedFrom(loaded, jobFile) && !isLeaving(loaded)) return;
        if (loaded.isLoaded() || !bootedOut_ || triedBefore) throw commandError(command, result.output());
    }
}

void AgentSteps::expect(const AgentTarget& target) {
    const auto since = waiting_.now();
    while (const auto failure = mismatch(target))
        if (!waits(since)) throw AgentToggleError(*failure);
}

CommandResult AgentSteps::run(const AllowedCommand& command) try {
    CommandResult result = runner_.run(command);
    // One that failed may have done its work, or a part of it, all the same.
    if (command.isWrite()) mayHaveChanged_ = true;
    return result;
} catch (const std::exception& failure) {
    const auto* commandFailure = dynamic_cast<const CommandError*>(&failure);
    const bool stopped = commandFailure && wasStopped(commandFailure->failure().problem);
    if (command.isWrite() && (!commandFailure || stopped)) mayHaveChanged_ = true;
    // It is only asked to stop, and what it asked of launchd may be under way already.
    if (command.isWrite() && stopped) mayStillChange_ = true;
    throw commandError(command, failure.what());
}

void AgentSteps::runStep(const AllowedCommand& command) {
    const CommandResult result = run(command);
    if (!result.succeeded()) throw commandError(command, result.output());
}

// The state that launchd reports instead, or why it can't be asked; nothing when all is as expected.
std::optional<AgentToggleFailure> AgentSteps::mismatch(const AgentTarget& target) try {
    const AgentOverride override = target.isDisabled ? AgentOverride::disabled : AgentOverride::enabled;
    const AgentState state = currentState();
    if (state.override != override)
        return AgentToggleFailure{AgentToggleProblem::verifyFailed,
                                  label_ + " override is " + std::string(rawValue(state.override)) +
                                      ", expected " + std::string(rawValue(override))};
    if (state.loaded.isLoaded() != target.isLoaded || (target.isLoaded && isLeaving(state.loaded)))
        return AgentToggleFailure{
            AgentToggleProblem::verifyFailed,
            label_ + " is " + words(!target.isLoaded) + ", expected " + words(target.isLoaded)};
    return std::nullopt;
} catch (const AgentToggleError& failure) {
    return failure.failure();
}

}  // namespace brell
