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
#include "BrellCore/Journal/AgentCommands.h"
#include "BrellCore/Support/AwakeClock.h"

namespace brell {

// Time, which is a test's own in tests.
struct Waiting {
    std::function<AwakeClock::time_point()> now;
    std::function<void(std::chrono::milliseconds)> sleep;
    // Told once a job takes its time to end, and how long it is given at most. May be empty.
    std::function<void(const std::string& label, std::chrono::seconds atMost)> tell = {};

    static Waiting real();
};

// Told to end, and still listed until its process has ended.
bool isLeaving(const LoadedState& loaded);

// Loaded, and from this file as far as launchd tells.
bool isLoadedFrom(const LoadedState& loaded, const std::string& plistPath);

// The allowed command for one of a plan's. jobFile is the file that a bootstrap loads.
AllowedCommand allowedCommand(AgentCommand::Verb verb, const std::string& domain, const std::string& label,
                              const std::string& jobFile);

struct AgentState {
    AgentOverride override;
    LoadedState loaded;
};

// The steps of one change of one agent; every one raises AgentToggleError. Blocks on launchctl.
class AgentSteps {
public:
    // domain is a gui domain. runner must outlive the steps.
    AgentSteps(CommandRunning& runner, Waiting waiting, std::string domain, std::string label);

    // The answer that launchd gives now. Raises when it can't be asked.
    AgentState currentState();
    AgentState currentState(const AgentOverrides& known);
    AgentOverrides overrides();  // of every label
    // The same, once a job that was told to end is gone or its time is over: the exit timeout that launchd
    // shows and some seconds more, half a minute at most.
    AgentState settledState();

    // Runs the commands of the plan whose conditions hold for an agent that is loaded or not, and waits until
    // launchd shows its target. jobFile is what a bootstrap loads. Neither the bootout of an agent that is
    // not loaded nor the bootstrap of one that is loaded from there already is an error.
    void carryOut(const AgentPlan& plan, bool isLoaded, const std::string& jobFile);

    // True after a step that may have changed something, even if it failed.
    bool mayHaveChanged() const { return mayHaveChanged_; }
    // True when such a step was stopped for taking too long: it may still act, at any time.
    bool mayStillChange() const { return mayStillChange_; }

private:
    CommandResult run(const AllowedCommand& command);
    void runStep(const AllowedCommand& command);
    void bootout(const AllowedCommand& command);
    void bootstrap(const AllowedCommand& command);
    void expect(const AgentTarget& target);
    std::optional<AgentToggleFailure> mismatch(const AgentTarget& target);
    bool waits(AwakeClock::time_point since);

    CommandRunning& runner_;
    const Waiting waiting_;
    const std::string domain_;
    const std::string label_;
    LoadedState seen_;  // what launchd showed last
    bool hasTold_ = false;
    bool mayHaveChanged_ = false;
    bool mayStillChange_ = false;
    bool bootedOut_ = false;
};

}  // namespace brell
