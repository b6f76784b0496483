#include "BrellCore/Background/AgentToggle.h"

#include <algorithm>

#include "BrellCore/Background/JobPath.h"
#include "BrellCore/Preferences/NeverTouch.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

AgentToggleError refused(std::string text) {
    return AgentToggleError({AgentToggleProblem::refused, std::move(text)});
}

bool isPlainLabel(std::string_view label) {
    return !label.empty() && label.size() <= 200 && std::all_of(label.begin(), label.end(), [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' ||
               c == '_' || c == '-';
    });
}

void checkLabel(const std::string& label) {
    if (!isPlainLabel(label))
        throw refused("The label \"" + label + "\" contains characters Brell does not pass to launchctl.");
    if (NeverTouch::isForbiddenLabel(label))
        throw refused(label + " is an Apple or Brell item; it is never changed.");
}

// Catches a file that was replaced since the agent was listed or captured.
void checkStillLabelled(const fs::path& file, const std::string& label) {
    const auto found = LaunchAgentPlist::read(file).label;
    if (found != label)
        throw refused("The plist's Label (" + found.value_or("none") + ") does not match " + label + ".");
}

// launchctl is given a path without links, and only one in a folder of this name.
void checkLoadablePlace(const std::string& domain, const fs::path& file) try {
    AllowedCommand::launchctlBootstrap(domain, file.string()).validate();
} catch (const CommandError&) {
    throw refused(file.string() + " could not be loaded again: your LaunchAgents folder leads to " +
                  file.parent_path().string() + ", which is no folder Library/LaunchAgents.");
}

// Two files may have the same label. What was loaded from another one could not be brought back from this
// one.
void checkSource(const LoadedState& loaded, const std::string& label, const std::string& plistPath) {
    if (loaded.isLoaded() && !isLoadedFrom(loaded, plistPath))
        throw refused(label + " is loaded from " + loaded.path.value_or("") + ", not from " + plistPath +
                      "; it is not changed.");
}

// An override that was absent comes back as enabled, which is the same to launchd.
bool isAsCaptured(const AgentState& state, const AgentCapture& capture) {
    const bool disabled = state.override == AgentOverride::disabled;
    return disabled == (capture.override == AgentOverride::disabled) &&
           state.loaded.isLoaded() == capture.wasLoaded && !isLeaving(state.loaded);
}

// The override tells afterwards which way a change went.
void checkTurns(const std::string& label, const AgentState& before, bool off) {
    const bool isOff = before.override == AgentOverride::disabled;
    if (isOff != off) return;
    if (off && before.loaded.isLoaded())
        throw refused(label + " is already turned off, and runs until it ends or you log out.");
    throw refused(label + (off ? " is already turned off." : " is not turned off."));
}

void switchOff(AgentSteps& steps) {
    steps.bootout();
    steps.disable();
    steps.expect(AgentOverride::disabled, false);
}

void switchOn(AgentSteps& steps, const std::string& plistPath) {
    steps.enable();
    steps.bootstrap(plistPath);
    steps.expect(AgentOverride::enabled, true);
}

}  // namespace

AgentToggle::AgentToggle(CommandRunning& runner, TweakEngine& engine, std::uint32_t uid,
                         const fs::path& launchAgentsDirectory, Waiting waiting)
    : runner_(runner),
      engine_(engine),
      uid_(uid),
      directory_(resolvedPath(launchAgentsDirectory)),
      waiting_(std::move(waiting)) {}

AgentToggle::Validated AgentToggle::validate(const LaunchAgentRecord& record) const {
    if (record.scope != AgentScope::user)
        throw refused("Only your own LaunchAgents can be changed here; this one needs an administrator.");
    const std::string label = record.plist.label.value_or("");
    if (label.empty()) throw refused("This plist has no Label, so launchd cannot address it.");
    checkLabel(label);
    const fs::path file = resolvedPath(record.plist.path);
    if (!isDirectlyInside(file))
        throw refused(file.string() + " is not a file directly inside your LaunchAgents folder.");
    checkStillLabelled(file, label);
    checkLoadablePlace(domain(), file);
    return {label, file.string()};
}

std::optional<std::string> AgentToggle::whyNotSwitched(const LaunchAgentRecord& record) const try {
    const Validated agent = validate(record);
    checkSource(record.loaded, agent.label, agent.plistPath);
    return std::nullopt;
} catch (const std::exception& error) {
    return error.what();
}

AgentState AgentToggle::currentState(const std::string& label) const {
    return stepsFor(label).currentState();
}

AgentOverrides AgentToggle::overrides() const {
    return stepsFor({}).overrides();
}

AgentState AgentToggle::currentState(const std::string& label, const AgentOverrides& known) const {
    return stepsFor(label).currentState(known);
}

std::vector<std::string> AgentToggle::previewOff(const LaunchAgentRecord& record) const {
    return preview(record, Direction::off);
}

std::vector<std::string> AgentToggle::previewOn(const LaunchAgentRecord& record) const {
    return preview(record, Direction::on);
}

std::vector<std::string> AgentToggle::previewRestore(const AgentCapture& capture) const {
    const std::string enable = AllowedCommand::launchctlEnable(domain(), capture.label).rendered();
    const std::string disable = AllowedCommand::launchctlDisable(domain(), capture.label).rendered();
    const std::string bootout = AllowedCommand::launchctlBootout(domain(), capture.label).rendered();
    const std::string bootstrap = AllowedCommand::launchctlBootstrap(domain(), capture.plistPath).rendered();
    const std::string onlyIfMissing = " (only if it is not loaded)";
    if (capture.override == AgentOverride::disabled) {
        if (!capture.wasLoaded) return {bootout, disable};
        return {enable + onlyIfMissing, bootstrap + onlyIfMissing, disable};
    }
    return {enable, capture.wasLoaded ? bootstrap + onlyIfMissing : bootout + " (only if it is loaded)"};
}

JournalEntry AgentToggle::turnOff(const LaunchAgentRecord& record) {
    return toggle(record, Direction::off);
}

JournalEntry AgentToggle::turnOn(const LaunchAgentRecord& record) {
    return toggle(record, Direction::on);
}

void AgentToggle::restore(const AgentCapture& capture) {
    checkOwn(capture);
    AgentSteps steps = stepsFor(capture.label);
    putBack(steps, capture);
}

AgentSteps AgentToggle::stepsFor(const std::string& label) const {
    return AgentSteps(runner_, waiting_, domain(), label);
}

// Whether the request is the opposite of this change, which then is restored.
bool AgentToggle::undoes(Direction direction, const JournalEntry& entry) {
    return entry.status == EntryStatus::applied && entry.agent &&
           brellTurnedOn(*entry.agent) == (direction == Direction::off);
}

std::vector<std::string> AgentToggle::preview(const LaunchAgentRecord& record, Direction direction) const
    try {
    const Validated agent = validate(record);
    const auto entry = engine_.journal().activeEntry(agentTweakID(agent.label));
    if (entry && undoes(direction, *entry)) return previewRestore(*entry->agent);
    if (direction == Direction::off)
        return {AllowedCommand::launchctlBootout(domain(), agent.label).rendered(),
                AllowedCommand::launchctlDisable(domain(), agent.label).rendered()};
    return {AllowedCommand::launchctlEnable(domain(), agent.label).rendered(),
            AllowedCommand::launchctlBootstrap(domain(), agent.plistPath).rendered()};
} catch (const JournalError& error) {
    throw AgentToggleError({AgentToggleProblem::engine, error.what()});
}

JournalEntry AgentToggle::toggle(const LaunchAgentRecord& record, Direction direction) try {
    const std::string label = validate(record).label;
    const auto entryToRestore = [&] { return restorableEntry(label, direction); };
    // Again under the lock, which may have been waited for.
    if (const auto entry = entryToRestore()) return engine_.restore(*entry, false, entryToRestore);

    captured(record, direction);  // before the lock's file is made, so that a refusal leaves nothing behind
    AgentChange change = engine_.beginAgentChange(label, [&] { return captured(record, direction); });
    const AgentCapture capture = change.entry.agent.value();
    AgentSteps steps = stepsFor(label);
    try {
        direction == Direction::off ? switchOff(steps) : switchOn(steps, capture.plistPath);
    } catch (const AgentToggleError& error) {
        Ending ending = undone(steps, capture, error.what());
        try {
            engine_.finishAgentChange(std::move(change), ending.status, std::move(ending.reason));
        } catch (const EngineError&) {
            // The entry stays on disk as interrupted; the first error is the one to report.
        }
        throw;
    }
    return engine_.finishAgentChange(std::move(change), EntryStatus::applied, std::nullopt);
} catch (const EngineError& error) {
    throw AgentToggleError({AgentToggleProblem::engine, error.what()});
} catch (const JournalError& error) {
    throw AgentToggleError({AgentToggleProblem::engine, error.what()});
}

// Refuses what may not be switched; otherwise what the change starts from.
AgentCapture AgentToggle::captured(const LaunchAgentRecord& record, Direction direction) const {
    const Validated agent = validate(record);
    const AgentState before = stepsFor(agent.label).settledState();
    checkTurns(agent.label, before, direction == Direction::off);
    if (isLeaving(before.loaded)) throw refused(agent.label + " is about to end; try again when it has.");
    checkSource(before.loaded, agent.label, agent.plistPath);
    return {agent.label, agent.plistPath, before.loaded.isLoaded(), before.override};
}

// A loaded agent that was disabled is loaded first: launchd loads none that is disabled.
void AgentToggle::putBack(AgentSteps& steps, const AgentCapture& capture) const {
    const bool wasDisabled = capture.override == AgentOverride::disabled;
    const bool missing = capture.wasLoaded && !steps.settledState().loaded.isLoaded();
    if (missing) checkLoadable(capture);
    if (!wasDisabled || missing) steps.enable();
    if (missing) steps.bootstrap(capture.plistPath);
    if (!capture.wasLoaded) steps.bootout();
    if (wasDisabled) steps.disable();
    steps.expect(wasDisabled ? AgentOverride::disabled : AgentOverride::enabled, capture.wasLoaded);
}

// A failed entry is no longer active: before it becomes one, the agent has to be as it was, and to stay so.
// Otherwise recovery tries again.
AgentToggle::Ending AgentToggle::undone(AgentSteps& steps, const AgentCapture& capture,
                                        std::string reason) const try {
    if (steps.mayHaveChanged() && !isAsCaptured(steps.settledState(), capture)) putBack(steps, capture);
    if (steps.mayStillChange())
        return {EntryStatus::capturing, reason + " The stopped command may still take effect."};
    return {EntryStatus::failed, std::move(reason)};
} catch (const AgentToggleError& stuck) {
    return {EntryStatus::capturing, reason + " " + stuck.what()};
}

// The active change that this request undoes, if there is one. Refuses when it is not as that change left it.
std::optional<Uuid> AgentToggle::restorableEntry(const std::string& label, Direction direction) const {
    const auto entry = engine_.journal().activeEntry(agentTweakID(label));
    if (!entry) return std::nullopt;
    if (entry->status != EntryStatus::applied || !entry->agent)
        throw refused(label + " has an interrupted change; restore it from the Journal first.");
    const bool turnedOn = brellTurnedOn(*entry->agent);
    if (!undoes(direction, *entry))
        throw refused(label + " was changed outside Brell since Brell " +
                      (turnedOn ? "turned it on" : "turned it off") + "; restore it from the Journal first.");
    const AgentState now = currentState(label);
    if (now.override != (turnedOn ? AgentOverride::enabled : AgentOverride::disabled) ||
        now.loaded.isLoaded() != turnedOn)
        throw refused(label + " was changed outside Brell (launchd shows " +
                      std::string(rawValue(now.override)) + ", " +
                      (now.loaded.isLoaded() ? "loaded" : "not loaded") +
                      "); restore it from the Journal first.");
    checkSource(now.loaded, label, entry->agent->plistPath);
    return entry->id;
}

// Refuses a capture of what is not the user's own agent. The journal is a file like any other: what it says
// is checked again.
void AgentToggle::checkOwn(const AgentCapture& capture) const {
    checkLabel(capture.label);
    if (!isDirectlyInside(resolvedPath(capture.plistPath)))
        throw refused(capture.plistPath + " is outside your LaunchAgents folder.");
}

// Refuses a capture whose job file can't be loaded any more. It may have been replaced while a job was
// waited for.
void AgentToggle::checkLoadable(const AgentCapture& capture) const {
    checkOwn(capture);
    const fs::path file = resolvedPath(capture.plistPath);
    std::error_code failed;
    if (fs::status(file, failed).type() == fs::file_type::not_found)
        throw refused("The file " + capture.plistPath + " is gone, so " + capture.label +
                      " cannot be loaded again.");
    checkStillLabelled(file, capture.label);
}

bool AgentToggle::isDirectlyInside(const fs::path& resolved) const {
    return resolved.parent_path() == directory_ && resolved.filename().native().ends_with(".plist");
}

}  // namespace brell
