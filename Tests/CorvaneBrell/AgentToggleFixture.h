// The agent toggle over a sample Mac, with a clock that only sleeping moves.
#pragma once

#include "BrellCore/Background/AgentToggle.h"
#include "CorvaneBrell/SampleMac/SampleMac.h"
#include "Tests/CorvaneBrell/JobFile.h"
#include "Tests/Support/EngineFixture.h"

namespace brell::testing {

class FakeTime {
public:
    Waiting waiting() {
        return {[this] { return now_; },
                [this](std::chrono::milliseconds time) {
                    now_ += time;
                    slept += time;
                }};
    }
    std::chrono::milliseconds slept{0};

private:
    AwakeClock::time_point now_{std::chrono::hours(1)};
};

struct AgentToggleFixture : EngineFixture {
    AgentToggleFixture() { engine.setAgentRestorer(&toggle); }

    LaunchAgentReader reader() { return {*tools, mac.home(), SampleMac::uid, mac.systemRoot()}; }
    LaunchAgentRecord record(std::string_view fileName) {
        for (LaunchAgentRecord& record : reader().userAgents())
            if (record.plist.path.ends_with("/" + std::string(fileName))) return record;
        throw std::out_of_range(std::string(fileName));
    }
    LaunchAgentRecord agent(const std::string& label) { return record(label + ".plist"); }

    // Why a switch is refused; empty when it is made.
    std::string notOff(const LaunchAgentRecord& record) {
        return messageOf([&] { toggle.turnOff(record); });
    }
    std::string notOn(const LaunchAgentRecord& record) {
        return messageOf([&] { toggle.turnOn(record); });
    }
    std::string notOff(const std::string& label) { return notOff(agent(label)); }
    std::string notOn(const std::string& label) { return notOn(agent(label)); }

    // "enabled, loaded", once a job that is leaving has left.
    std::string stateOf(const std::string& label) {
        AgentState state = toggle.currentState(label);
        while (isLeaving(state.loaded)) state = toggle.currentState(label);
        return std::string(rawValue(state.override)) +
               (state.loaded.isLoaded() ? ", loaded" : ", not loaded");
    }
    std::filesystem::path fileOf(const std::string& label) const {
        return mac.launchAgents() / (label + ".plist");
    }
    // Leaves behind what a toggle does that dies right after its first step.
    JournalEntry interruptedTurningOff(const std::string& label) {
        const AgentState before = toggle.currentState(label);
        JournalEntry entry = engine
                                 .beginAgentChange(label, {label, fileOf(label).string(),
                                                           before.loaded.isLoaded(), before.override})
                                 .entry;
        bootout(label);
        return entry;
    }
    void bootout(const std::string& label) { tools->run(AllowedCommand::launchctlBootout("gui/501", label)); }
    void bootstrap(const std::filesystem::path& file) {
        tools->run(AllowedCommand::launchctlBootstrap("gui/501", file.string()));
    }
    std::string launchdState() const { return contentsOf(SimulatedLaunchd::stateFile(mac.systemRoot())); }

    // The refusal where others switched it, so that launchd shows this.
    static std::string changedOutside(const std::string& label, const std::string& shown) {
        return label + " was changed outside Brell " + shown + "; restore it from the Journal first.";
    }

    const std::string plain = "homebrew.mxcl.redis";

    SampleMac mac{folder.path / "mac"};
    std::unique_ptr<SimulatedTools> tools = mac.openTools();
    FakeTime time;
    AgentToggle toggle{*tools, engine, SampleMac::uid, mac.launchAgents(), time.waiting()};
};

}  // namespace brell::testing
