#include "BrellCore/Background/AgentSteps.h"

#include <algorithm>
#include <array>
#include <thread>

#include "BrellCore/Background/JobPath.h"
#include "BrellCore/Background/Lines.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

using namespace std::chrono_literals;
constexpr auto patience = 5s;
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
    return error(AgentToggleProblem::command, command.rendered() + ": " + oneLine(stripped(output)));
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

Waiting Waiting::real() {
    return {[] { return std::chrono::steady_clock::now(); },
            [](std::chrono::milliseconds time) { std::this_thread::sleep_for(time); }};
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
    if (stripped(answer.output()).empty()) throw commandError(askOverrides, "it answered nothing");
    return LaunchctlParser::parsePrintDisabled(answer.stdoutText);
}

AgentState AgentSteps::currentState(const AgentOverrides& overrides) {
    const auto override = overrides.find(label_);
    const LoadedState loaded =
        LaunchctlParser::parsePrint(run(AllowedCommand::launchctlPrint(domain_ + "/" + label_)));
    if (loaded.isUnknown())
        throw error(AgentToggleProblem::refused,
                    "launchd could not be asked whether " + label_ + " is loaded.");
    return {override == overrides.end() ? AgentOverride::absent : override->second, loaded};
}

AgentState AgentSteps::settledState() {
    const auto deadline = waiting_.now() + patience;
    AgentState state = currentState();
    while (isLeaving(state.loaded) && waiting_.now() < deadline) {
        waiting_.sleep(pause);
        state = currentState();
    }
    return state;
}

void AgentSteps::bootout() {
    const AllowedCommand command = AllowedCommand::launchctlBootout(domain_, label_);
    const CommandResult result = run(command);
    if (saysNotLoaded(result)) return;
    if (!result.succeeded() && result.exitCode != underWayCode) throw commandError(command, result.output());
    bootedOut_ = true;
}

void AgentSteps::disable() {
    runStep(AllowedCommand::launchctlDisable(domain_, label_));
}

void AgentSteps::enable() {
    runStep(AllowedCommand::launchctlEnable(domain_, label_));
}

void AgentSteps::bootstrap(const std::string& plistPath) {
    const AllowedCommand command = AllowedCommand::launchctlBootstrap(domain_, plistPath);
    for (bool triedBefore = false;; triedBefore = true) {
        const CommandResult result = run(command);
        if (result.succeeded()) return;
        const bool unclear =
            std::find(unclearCodes.begin(), unclearCodes.end(), result.exitCode) != unclearCodes.end();
        if (!unclear) throw commandError(command, result.output());
        const LoadedState loaded = settledState().loaded;
        if (isLoadedFrom(loaded, plistPath) && !isLeaving(loaded)) return;
        if (loaded.isLoaded() || !bootedOut_ || triedBefore) throw commandError(command, result.output());
    }
}

void AgentSteps::expect(AgentOverride override, bool loaded) {
    const auto deadline = waiting_.now() + patience;
    while (const auto failure = mismatch(override, loaded)) {
        if (waiting_.now() >= deadline) throw AgentToggleError(*failure);
        waiting_.sleep(pause);
    }
}

CommandResult AgentSteps::run(const AllowedCommand& command) try {
    CommandResult result = runner_.run(command);
    // One that failed may have done its work, or a part of it, all the same.
    if (command.isWrite()) mayHaveChanged_ = true;
    return result;
} catch (const std::exception& failure) {
    const auto* commandFailure = dynamic_cast<const CommandError*>(&failure);
    const bool stopped = commandFailure && commandFailure->failure().problem == CommandProblem::timedOut;
    if (command.isWrite() && (!commandFailure || stopped)) mayHaveChanged_ = true;
    // It is only asked to stop, and what it asked of launchd may be under way already.
    if (command.isWrite() && stopped) mayStillChange_ = true;
    throw commandError(command, failure.what());
}

void AgentSteps::runStep(const AllowedCommand& command) {
    const CommandResult result = run(command);
    if (!result.succeeded()) throw commandError(command, result.output());
}

// What launchd reports otherwise, or why it can't be asked; nothing when all is as expected.
std::optional<AgentToggleFailure> AgentSteps::mismatch(AgentOverride override, bool loaded) try {
    const AgentState state = currentState();
    if (state.override != override)
        return AgentToggleFailure{AgentToggleProblem::verifyFailed,
                                  label_ + " override is " + std::string(rawValue(state.override)) +
                                      ", expected " + std::string(rawValue(override))};
    if (state.loaded.isLoaded() != loaded || (loaded && isLeaving(state.loaded)))
        return AgentToggleFailure{AgentToggleProblem::verifyFailed,
                                  label_ + " is " + words(!loaded) + ", expected " + words(loaded)};
    return std::nullopt;
} catch (const AgentToggleError& failure) {
    return failure.failure();
}

}  // namespace brell
