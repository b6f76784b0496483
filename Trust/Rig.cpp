#include "Trust/Rig.h"

namespace brell::trust {

namespace {

constexpr std::string_view leaving = "SIGTERMed";

fs::path launchdFile(const fs::path& folder) {
    return SimulatedLaunchd::stateFile(folder);
}

// Later than everything in the journal, and a second later whenever it is asked.
Clock steppingClock(const fs::path& folder) {
    const auto journal = Journal::open(Journal::defaultDirectory(SampleMac(folder).home()));
    const auto runs = static_cast<int>(journal->all().size());
    const auto now =
        std::make_shared<TimeStamp>(parseIso8601("2026-11-15T20:23:13Z").value() + std::chrono::hours(runs));
    return [now] { return *now += std::chrono::seconds(1); };
}

Waiting waitingWithoutTime() {
    const auto time = std::make_shared<testing::FakeTime>();
    return {[time] { return time->waiting().now(); },
            [time](std::chrono::milliseconds duration) { time->waiting().sleep(duration); }};
}

}  // namespace

Rig::Rig(const fs::path& folder) : Rig(folder, steppingClock(folder), waitingWithoutTime()) {}

Rig::Rig(const fs::path& folder, const Clock& clock, Waiting waiting)
    : mac(folder),
      run_(*store, catalog, journalDirectory, clock),
      toggle(*tools, engine, SampleMac::uid, mac.launchAgents(), std::move(waiting)) {
    engine.setAgentRestorer(&toggle);
    for (const auto& entry : fs::directory_iterator(mac.launchAgents())) {
        LaunchAgentPlist plist = LaunchAgentPlist::read(entry.path());
        if (!plist.label) continue;
        const std::string label = *plist.label;
        agents_.emplace(label, LaunchAgentRecord{std::move(plist), AgentScope::user, AgentOverride::absent,
                                                 LoadedState::unknown()});
    }
}

void Rig::breakOffAgent(const std::string& label) {
    const AgentState state = toggle.currentState(label);
    const std::string file = (mac.launchAgents() / (label + ".plist")).string();
    engine.beginAgentChange(label, {label, file, state.loaded.isLoaded(), state.override});
    tools->run(AllowedCommand::launchctlDisable(toggle.domain(), label));
}

Condition conditionOf(const fs::path& folder) {
    Condition condition;
    for (const auto& [domain, values] : SampleMac(folder).openPreferences()->snapshot())
        for (const auto& [key, value] : values)
            condition[PrefKey{domain, key}.rendered()] = StoredValue(value).rendered();
    const LaunchdState launchd = readLaunchdState(launchdFile(folder));
    for (const auto& [label, isDisabled] : launchd.overrides)
        if (isDisabled) condition[label] = "disabled, not loaded";
    for (const auto& [label, job] : launchd.jobs)
        if (job.state != leaving)
            condition[label] = condition.contains(label) ? "disabled, loaded" : "enabled, loaded";
    return condition;
}

std::set<std::string> activeTweaks(Journal& journal) {
    std::set<std::string> tweaks;
    for (const JournalEntry& entry : journal.active()) tweaks.insert(entry.tweakID);
    return tweaks;
}

void letJobsEnd(const fs::path& folder) {
    LaunchdState launchd = readLaunchdState(launchdFile(folder));
    if (std::erase_if(launchd.jobs, [](const auto& job) { return job.second.state == leaving; }) > 0)
        writeLaunchdState(launchdFile(folder), launchd);
}

}  // namespace brell::trust
