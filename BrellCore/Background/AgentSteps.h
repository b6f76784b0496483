// The single steps of switching one LaunchAgent with launchctl, as launchctl really behaves: it answers
// before a job is gone, and refuses to load one that is still going.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "BrellCore/Background/AgentToggleError.h"
#include "BrellCore/Background/CommandRunning.h"
#include "BrellCore/Background/LaunchctlParser.h"
#include "BrellCore/Journal/JournalEntry.h"

namespace brell {

// Time, handed in so that tests own it.
struct Waiting {
    std::function<std::chrono::steady_clock::time_point()> now;
    std::function<void(std::chrono::milliseconds)> sleep;

    static Waiting real();
};

// Told to end, and still listed until its process has ended.
bool isLeaving(const LoadedState& loaded);

// Loaded, and from this file as far as launchd tells.
bool isLoadedFrom(const LoadedState& loaded, const std::string& plistPath);

struct AgentState {
    AgentOverride override;
    LoadedState loaded;
};

// The steps of one change of one agent; every one raises AgentToggleError. Blocks on launchctl.
class AgentSteps {
public:
    // domain is "gui/" and the user's number. runner must outlive the steps.
    AgentSteps(CommandRunning& runner, Waiting waiting, std::string domain, std::string label);

    // What launchd says now. Raises when it can't be asked.
    AgentState currentState();
    AgentState currentState(const AgentOverrides& known);
    AgentOverrides overrides();  // of every label
    // The same, once a job that was told to end is gone; at most five seconds later.
    AgentState settledState();

    void bootout();  // an agent that is not loaded is no error
    void disable();
    void enable();
    void bootstrap(const std::string& plistPath);  // one that is loaded from there already is no error

    // Waits up to five seconds for launchd to report this, then raises.
    void expect(AgentOverride override, bool loaded);

    // Whether a step was run that may have changed something, even if it failed.
    bool mayHaveChanged() const { return mayHaveChanged_; }
    // Whether such a step was stopped for taking too long: it may still act, at any time.
    bool mayStillChange() const { return mayStillChange_; }

private:
    CommandResult run(const AllowedCommand& command);
    void runStep(const AllowedCommand& command);
    std::optional<AgentToggleFailure> mismatch(AgentOverride override, bool loaded);

    CommandRunning& runner_;
    const Waiting waiting_;
    const std::string domain_;
    const std::string label_;
    bool mayHaveChanged_ = false;
    bool mayStillChange_ = false;
    bool bootedOut_ = false;
};

}  // namespace brell
