// Brell at work on a sample Mac: what every try of the harness begins with, and what a user sees afterwards.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "Tests/CorvaneBrell/AgentToggleFixture.h"

namespace brell::trust {

namespace fs = std::filesystem;

// One run of the program over the Mac in this folder, which is filled when it is not there yet.
class Rig {
public:
    // Time passes only when it is asked for or slept through.
    explicit Rig(const std::filesystem::path& folder);
    // Threads may share the rig when they may share these.
    Rig(const std::filesystem::path& folder, const Clock& clock, Waiting waiting);

    const Tweak& tweak(std::string_view id) const { return *catalog.tweak(id); }
    // As listed when the program started.
    const LaunchAgentRecord& agent(const std::string& label) const { return agents_.at(label); }
    bool hasJobFile(const std::string& label) const { return agents_.contains(label); }

    // Leave the entry of a change as a crash between the durable capture and the first step would.
    void breakOff(std::string_view tweakID) { testing::breakOff(engine, tweak(tweakID)); }
    void breakOffAgent(const std::string& label);

    const SampleMac mac;
    const std::filesystem::path journalDirectory = Journal::defaultDirectory(mac.home());
    const TweakCatalog catalog{mac.home().string()};
    const std::unique_ptr<PlistFileStore> store = mac.openPreferences();
    const std::unique_ptr<SimulatedTools> tools = mac.openTools();

private:
    std::map<std::string, LaunchAgentRecord> agents_;
    testing::EngineRun run_;

public:
    Journal& journal = *run_.journal;
    TweakEngine& engine = run_.engine;
    AgentToggle toggle;
};

// A Mac as its user would notice it, in words: by the rendered key every preference, and by its label of
// every agent whether it is disabled and loaded. An override that says "enabled" is none; a job that was told
// to end is gone.
using Condition = std::map<std::string, std::string>;
Condition conditionOf(const std::filesystem::path& folder);

std::set<std::string> activeTweaks(Journal& journal);

// Time passes until every job that was told to end has ended.
void letJobsEnd(const std::filesystem::path& folder);

}  // namespace brell::trust
