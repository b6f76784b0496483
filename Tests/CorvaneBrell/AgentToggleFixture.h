// The agent toggle over a sample Mac, with a clock that only sleeping moves.
#pragma once

#include "BrellCore/Background/AgentToggle.h"
#include "CorvaneBrell/SampleMac/SampleMac.h"
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
    std::chrono::steady_clock::time_point now_{std::chrono::hours(1)};
};

inline std::string jobFile(const std::string& label) {
    return "<plist version=\"1.0\"><dict><key>Label</key><string>" + label + "</string></dict></plist>";
}

struct AgentToggleFixture : EngineFixture {
    AgentToggleFixture() { engine.setAgentRestorer(&toggle); }

    LaunchAgentReader reader() { return {*tools, mac.home(), SampleMac::uid, mac.systemRoot()}; }
    LaunchAgentRecord record(std::string_view fileName) {
        for (LaunchAgentRecord& record : reader().userAgents())
            if (record.plist.path.ends_with("/" + std::string(fileName))) return record;
        throw std::out_of_range(std::string(fileName));
    }
    LaunchAgentRecord agent(const std::string& label) { return record(label + ".plist"); }

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
    // What a toggle that dies right after its first step leaves behind.
    JournalEntry interruptedTurningOff(const std::string& label) {
        const AgentState before = toggle.currentState(label);
        JournalEntry entry = engine
                                 .beginAgentChange(label, {label, fileOf(label).string(),
                                                           before.loaded.isLoaded(), before.override})
                                 .entry;
        tools->run(AllowedCommand::launchctlBootout("gui/501", label));
        return entry;
    }
    std::string launchdState() const { return contentsOf(SimulatedLaunchd::stateFile(mac.systemRoot())); }

    const std::string plain = "homebrew.mxcl.redis";

    SampleMac mac{folder.path / "mac"};
    std::unique_ptr<SimulatedTools> tools = mac.openTools();
    FakeTime time;
    AgentToggle toggle{*tools, engine, SampleMac::uid, mac.launchAgents(), time.waiting()};
};

}  // namespace brell::testing
