#include "BrellCore/Background/AgentToggle.h"

#include <algorithm>

#include "BrellCore/Background/JobPath.h"
#include "BrellCore/Preferences/NeverTouch.h"
#include "BrellCore/Support/Ownership.h"
#include "BrellCore/Support/Text.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

AgentToggleError refused(std::string text) {
    return AgentToggleError({AgentToggleProblem::refused, std::move(text)});
}

std::optional<std::string> whyNotLabel(const std::string& label) {
    if (!AgentCommands::isPlainLabel(label))
        return "The label \"" + excerpt(label) + "\" contains characters Brell does not pass to launchctl.";
    if (NeverTouch::isForbiddenLabel(label))
        return label + " is an Apple or Brell item; it is never changed.";
    return std::nullopt;
}

void checkLabel(const std::string& label) {
    if (auto why = whyNotLabel(label)) throw refused(*std::move(why));
}

// Catches a file that was replaced since the agent was listed or captured; and an agent that would go on
// running where nothing here sees it.
void checkContents(const LaunchAgentPlist& plist, const std::string& label) {
    if (plist.label != label)
        throw refused("The plist's Label (" + excerpt(plist.label.value_or("none")) + ") does not match " +
                      label + ".");
    if (plist.isForOtherSessions)
        throw refused(label +
                      " is for sessions without a desktop, where Brell can't see whether it runs: its "
                      "LimitLoadToSessionType does not name Aqua. It is not changed.");
}

// launchctl is given a path without links, and only one in a folder of this name.
std::optional<std::string> whyNotLoadable(const std::string& domain, const fs::path& file) try {
    AllowedCommand::launchctlBootstrap(domain, file.string()).validate();
    return std::nullopt;
} catch (const CommandError&) {
    return file.string() + " could not be loaded again: your LaunchAgents folder leads to " +
           file.parent_path().string() + ", which is no folder Library/LaunchAgents.";
}

// True when this names a file that is gone; launchd's words in parentheses name none.
bool isGone(const std::string& path) {
    std::error_code failed;
    return path.starts_with('/') && fs::status(path, failed).type() == fs::file_type::not_found;
}

// The home in whose LaunchAgents folder it lies; nothing of a file elsewhere.
std::optional<fs::path> homeOf(const fs::path& jobFile) {
    const fs::path folder = jobFile.parent_path(), library = folder.parent_path();
    const bool isOfAHome =
        jobFile.is_absolute() && folder.filename() == "LaunchAgents" && library.filename() == "Library";
    return isOfAHome ? std::optional(library.parent_path()) : std::nullopt;
}

std::string placeOf(const LoadedState& loaded) {
    return loaded.path ? excerpt(*loaded.path, mostOfASentence) : "an unknown place";
}

// Two files may have the same label. A job loaded from another one could not be brought back from this
// one, unless that was renamed to this or this to that.
void checkSource(const LoadedState& loaded, const std::string& label, const std::string& plistPath) {
    const bool isRenamed = isGone(loaded.path.value_or("")) || isGone(plistPath);
    if (loaded.isLoaded() && !isLoadedFrom(loaded, plistPath) && !isRenamed)
        throw refused(label + " is loaded from " + placeOf(loaded) + ", not from " + plistPath +
                      "; it is not changed.");
}

// An override that was absent comes back as enabled, which is the same to launchd.
bool isAsCaptured(const AgentState& state, const AgentCapture& capture) {
    const bool disabled = state.override == AgentOverride::disabled;
    return disabled == (capture.override == AgentOverride::disabled) &&
           state.loaded.isLoaded() == capture.wasLoaded && !isLeaving(state.loaded);
}

bool isAsLeft(const AgentState& state, bool turnedOn) {
    return state.override == (turnedOn ? AgentOverride::enabled : AgentOverride::disabled) &&
           state.loaded.isLoaded() == turnedOn;
}

std::string shown(const AgentState& state) {
    return "launchd shows " + std::string(rawValue(state.override)) + ", " +
           (state.loaded.isLoaded() ? "loaded" : "not loaded");
}

// The override tells afterwards which way a change went.
void checkTurns(const std::string& label, const AgentState& before, AgentSwitch direction) {
    const bool isOff = before.override == AgentOverride::disabled;
    const bool turnsOff = direction == AgentSwitch::off;
    if (isOff != turnsOff) return;
    if (turnsOff && before.loaded.isLoaded())
        throw refused(label + " is already turned off, and runs until it ends or you log out.");
    throw refused(label + (turnsOff ? " is already turned off." : " is not turned off."));
}

std::string_view conditionWords(AgentCommand::When when) {
    switch (when) {
        case AgentCommand::When::ifLoaded: return " (only if it is loaded)";
        case AgentCommand::When::ifNotLoaded: return " (only if it is not loaded)";
        case AgentCommand::When::always: break;
    }
    return {};
}

// A tool's own words need not end with a stop.
std::string joined(std::string sentence, std::string_view next) {
    if (!sentence.ends_with('.')) sentence += '.';
    return sentence + " " + std::string(next);
}

}  // namespace

AgentToggle::AgentToggle(CommandRunning& runner, TweakEngine& engine, std::uint32_t uid,
                         const fs::path& launchAgentsDirectory, Waiting waiting)
    : runner_(runner),
      engine_(engine),
      uid_(uid),
      folder_(launchAgentsDirectory),
      waiting_(std::move(waiting)) {}

AgentToggle::Validated AgentToggle::validate(const LaunchAgentRecord& record) const {
    if (record.scope != AgentScope::user)
        throw refused("Only your own LaunchAgents can be changed here; this one needs an administrator.");
    if (record.plist.leadsTo)
        throw refused(record.plist.path + " is a link to " + *record.plist.leadsTo +
                      ", not a file directly inside your LaunchAgents folder.");
    const std::string label = record.plist.label.value_or("");
    if (label.empty()) throw refused("This plist has no Label, so launchd cannot address it.");
    checkLabel(label);
    const fs::path file = resolvedPath(record.plist.path);
    if (!folder_.isDirectlyInside(file))
        throw refused(file.string() + " is not a file directly inside your LaunchAgents folder.");
    checkContents(LaunchAgentPlist::read(file), label);
    if (auto why = whyNotLoadable(domain(), file)) throw refused(*std::move(why));
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

AgentPreview AgentToggle::preview(const LaunchAgentRecord& record, AgentSwitch direction) const try {
    const Validated agent = validate(record);
    if (const auto entry = restorableEntry(agent.label, direction))
        return {previewRestore(*entry->agent), AgentCommands::undoing(*entry->agent).target};
    const AgentPlan plan = AgentCommands::switching(direction);
    return {rendered(plan, agent.label, agent.plistPath), plan.target};
} catch (const JournalError& error) {
    throw AgentToggleError({AgentToggleProblem::engine, error.what()});
}

std::vector<std::string> AgentToggle::previewOff(const LaunchAgentRecord& record) const {
    return preview(record, AgentSwitch::off).commands;
}

std::vector<std::string> AgentToggle::previewOn(const LaunchAgentRecord& record) const {
    return preview(record, AgentSwitch::on).commands;
}

std::vector<std::string> AgentToggle::previewRestore(const AgentCapture& capture) const {
    return rendered(AgentCommands::undoing(capture), capture);
}

std::vector<std::string> AgentToggle::previewAgain(const AgentCapture& capture) const {
    return rendered(AgentCommands::making(capture), capture);
}

std::vector<std::string> AgentToggle::rendered(const AgentPlan& plan, const AgentCapture& capture) const {
    std::string jobFile = capture.plistPath;
    try {
        if (const auto found = folder_.jobFile(capture.label, capture.plistPath)) jobFile = found->string();
    } catch (const AgentToggleError&) {
        // Carrying it out will say so.
    }
    return rendered(plan, capture.label, jobFile);
}

std::vector<std::string> AgentToggle::rendered(const AgentPlan& plan, const std::string& label,
                                               const std::string& jobFile) const {
    std::vector<std::string> lines;
    for (const AgentCommand& command : plan.commands)
        lines.push_back(
            excerpt(allowedCommand(command.verb, domain(), label, jobFile).rendered(), mostOfASentence) +
            std::string(conditionWords(command.when)));
    return lines;
}

JournalEntry AgentToggle::turnOff(const LaunchAgentRecord& record) {
    return toggle(record, AgentSwitch::off);
}

JournalEntry AgentToggle::turnOn(const LaunchAgentRecord& record) {
    return toggle(record, AgentSwitch::on);
}

std::optional<std::string> AgentToggle::restore(const AgentCapture& capture) {
    if (auto why = whyNotOwn(capture)) throw refused(*std::move(why));
    AgentSteps steps = stepsFor(capture.label);
    return putBack(steps, capture);
}

std::optional<std::string> AgentToggle::whyNotRestored(const AgentCapture& capture) {
    if (auto why = whyNotOwn(capture)) return why;
    return whyNotRestored(capture, stepsFor(capture.label).settledState());
}

std::optional<std::string> AgentToggle::whyNotRestored(const AgentCapture& capture,
                                                       const AgentState& now) const {
    if (auto why = whyNotOwn(capture)) return why;
    return whyNotPutBack(now, capture, folder_.jobFile(capture.label, capture.plistPath));
}

std::optional<std::string> AgentToggle::otherState(const AgentCapture& capture) {
    checkLabel(capture.label);
    const AgentState now = stepsFor(capture.label).settledState();
    return isAsLeft(now, brellTurnedOn(capture)) ? std::nullopt : std::optional(shown(now));
}

AgentSteps AgentToggle::stepsFor(const std::string& label) const {
    return AgentSteps(runner_, waiting_, domain(), label);
}

JournalEntry AgentToggle::toggle(const LaunchAgentRecord& record, AgentSwitch direction) try {
    const std::string label = validate(record).label;
    const auto entryToRestore = [&] { return restorableEntry(label, direction); };
    // Again under the lock, which may have been waited for.
    if (const auto entry = entryToRestore()) return engine_.restore(entry->id, false, entryToRestore);

    captured(record, direction);  // before the lock's file is made, so that a refusal leaves nothing behind
    AgentChange change = engine_.beginAgentChange(label, [&] { return captured(record, direction); });
    const AgentCapture capture = change.entry.agent.value();
    AgentSteps steps = stepsFor(label);
    try {
        steps.carryOut(AgentCommands::making(capture), capture.wasLoaded, capture.plistPath);
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
AgentCapture AgentToggle::captured(const LaunchAgentRecord& record, AgentSwitch direction) const {
    const Validated agent = validate(record);
    AgentState before = stepsFor(agent.label).settledState();
    before.override = LaunchAgentReader::inForce(before.override, LaunchAgentPlist::read(agent.plistPath));
    checkTurns(agent.label, before, direction);
    if (isLeaving(before.loaded)) throw refused(agent.label + " is about to end; try again when it has.");
    checkSource(before.loaded, agent.label, agent.plistPath);
    return {agent.label, agent.plistPath, before.loaded.isLoaded(), before.override};
}

// The journal is a file like any other, and its label may be that of another user's job: so a job that is
// loaded from elsewhere is never ended, and otherwise a file of the folder has to have the label.
std::optional<std::string> AgentToggle::whyNotPutBack(const AgentState& now, const AgentCapture& capture,
                                                      const std::optional<fs::path>& file) const {
    if (!now.loaded.isLoaded())
        return capture.wasLoaded && file ? whyNotLoadable(domain(), *file) : std::nullopt;
    if (isOwn(now.loaded, file.has_value()) || isAsCaptured(now, capture)) return std::nullopt;
    if (capture.wasLoaded && file) return std::nullopt;
    return capture.label + " is loaded from " + placeOf(now.loaded) +
           ", which is not in your LaunchAgents folder; it is not changed.";
}

// Gives a sentence when it is as far back as it goes.
std::optional<std::string> AgentToggle::putBack(AgentSteps& steps, const AgentCapture& capture) const {
    const AgentState now = steps.settledState();
    const auto file = folder_.jobFile(capture.label, capture.plistPath);
    if (auto why = whyNotPutBack(now, capture, file)) throw refused(*std::move(why));
    if (!isOwn(now.loaded, file.has_value())) {
        if (isAsCaptured(now, capture)) return std::nullopt;
        if (!now.loaded.isLoaded()) return putBackWithoutFile(steps, capture);
    }
    steps.carryOut(AgentCommands::undoing(capture), now.loaded.isLoaded(),
                   file ? file->string() : capture.plistPath);
    return std::nullopt;
}

// Allowing an agent again starts nothing; to turn something off, it has to be the user's.
std::optional<std::string> AgentToggle::putBackWithoutFile(AgentSteps& steps,
                                                           const AgentCapture& capture) const {
    const std::string noFile =
        "No file in your LaunchAgents folder has the label " + capture.label + " any more, so ";
    if (capture.turnedOn()) return noFile + "there was nothing to turn off.";
    steps.carryOut({{{AgentCommand::Verb::enable}}, {false, false}}, false, {});
    if (!capture.wasLoaded) return std::nullopt;
    return noFile + "it is allowed again, but there was nothing to load.";
}

// True when it is the user's own. Where launchd does not say where it comes from, a file has to speak for it.
bool AgentToggle::isOwn(const LoadedState& loaded, bool hasFile) const {
    return loaded.isLoaded() && loaded.path ? folder_.holds(*loaded.path) : hasFile;
}

// A failed entry is no longer active: before it becomes one, the agent has to be as it was, and to stay so.
// Otherwise recovery tries again.
AgentToggle::Ending AgentToggle::undone(AgentSteps& steps, const AgentCapture& capture,
                                        std::string reason) const try {
    if (steps.mayHaveChanged() && !isAsCaptured(steps.settledState(), capture))
        if (const auto remark = putBack(steps, capture))
            return {EntryStatus::capturing, joined(std::move(reason), *remark)};
    if (steps.mayStillChange())
        return {EntryStatus::capturing,
                joined(std::move(reason), "The stopped command may still take effect.")};
    return {EntryStatus::failed, std::move(reason)};
} catch (const AgentToggleError& stuck) {
    return {EntryStatus::capturing, joined(std::move(reason), stuck.what())};
}

// The active change that this request undoes, if there is one. Refuses when it is not as that change left it.
std::optional<JournalEntry> AgentToggle::restorableEntry(const std::string& label,
                                                         AgentSwitch direction) const {
    auto entry = engine_.journal().activeEntry(agentTweakID(label));
    if (!entry) return std::nullopt;
    if (entry->status != EntryStatus::applied || !entry->agent)
        throw refused(label + " has an interrupted change; restore it from the Journal first.");
    const bool turnedOn = entry->agent->turnedOn();
    if (turnedOn != (direction == AgentSwitch::off))
        throw refused(label + " was changed outside Brell since Brell " +
                      (turnedOn ? "turned it on" : "turned it off") + "; restore it from the Journal first.");
    const AgentState now = currentState(label);
    if (!isAsLeft(now, turnedOn))
        throw refused(label + " was changed outside Brell (" + shown(now) +
                      "); restore it from the Journal first.");
    checkSource(now.loaded, label, entry->agent->plistPath);
    return entry;
}

// Of a home that is gone: the user was renamed, or the home came from another Mac. Or of one that was moved
// and left where it was, once the agent's file has arrived with it.
bool AgentToggle::isOfAFormerHome(const AgentCapture& capture) const try {
    const auto home = homeOf(capture.plistPath);
    if (!home) return false;
    return isGone(home->string()) ||
           (ownerOf(*home) == uid_ && folder_.jobFile(capture.label, capture.plistPath));
} catch (const AgentToggleError&) {
    return true;  // a folder that can't be read is told of by what goes on to look for the file
}

std::optional<std::string> AgentToggle::whyNotOwn(const AgentCapture& capture) const {
    if (auto why = whyNotLabel(capture.label)) return why;
    if (folder_.holds(capture.plistPath) || isOfAFormerHome(capture)) return std::nullopt;
    return capture.plistPath + " is outside your LaunchAgents folder.";
}

}  // namespace brell
