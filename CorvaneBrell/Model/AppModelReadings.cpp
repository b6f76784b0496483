// Readings with the system's tools, and those that the user waits for.

#include "CorvaneBrell/Model/AppModel.h"

namespace fs = std::filesystem;

namespace brell {

// Rows are shown as they are read, the first time.
void AppModel::loadLoginItems() {
    Posted<LoginItems> soFar;
    if (!state_.loginItemsLoaded)
        soFar = readings_.posted<LoginItems>([this](LoginItems items) {
            if (!state_.loginItemsLoaded) showLoginItems(std::move(items), false);
        });
    const auto done = [this](JobResult<LoginItems> result) {
        if (!result.value) return fail(result.error);
        if (result.value->error)
            fail("launchd could not be asked for the login items: " + *result.value->error);
        showLoginItems(std::move(*result.value), true);
    };
    readings_.run("", &ReadingWork::loginItems, done, soFar);
    loadAgentDrift();
}

void AppModel::showLoginItems(LoginItems items, bool isAll) {
    bool isOther = false;
    // After an error the rows that were shown before are still the best that is known.
    if (!items.error || !state_.loginItemsLoaded) {
        isOther |= put(&AppState::loginItems, std::move(items.rows));
        isOther |= put(&AppState::switchRefusals, std::move(items.refusals));
    }
    if (isAll) {
        isOther |= put(&AppState::btmUnavailable, !items.hasDatabase);
        isOther |= put(&AppState::loginItemsLoaded, true);
    }
    if (isOther) announce(Topic::loginItems);
}

void AppModel::loadAgentDrift() {
    const auto done = [this](JobResult<std::vector<DriftedEntry>> result) {
        if (result.value) set(&AppState::driftedAgents, std::move(*result.value), Topic::journal);
    };
    readings_.run("", &ReadingWork::driftedAgents, done);
}

// The first time each volume is shown as it answers; later the old answers stay until all are there.
void AppModel::loadVolumes() {
    const auto show = [this](Volumes volumes) {
        set(&AppState::volumes, std::move(volumes), Topic::volumes);
    };
    Posted<Volumes> soFar;
    if (state_.volumes.empty()) soFar = readings_.posted<Volumes>(show);
    const auto done = [this, show](JobResult<Volumes> result) {
        if (!result.value) return fail(result.error);
        show(std::move(*result.value));
    };
    readings_.run("", &ReadingWork::volumes, done, soFar);
}

void AppModel::askAgents(const std::vector<std::string>& rowIDs, bool turnOn) {
    const std::set<std::string> asked(rowIDs.begin(), rowIDs.end());
    std::vector<LaunchAgentRecord> agents;
    for (const LoginItemRow& row : state_.loginItems)
        if (row.record && asked.contains(row.id)) agents.push_back(*row.record);
    const auto done = [this](JobResult<AgentConfirmRequest> request) {
        if (!request.value) return fail(request.error);
        if (state_.agentConfirm) return;  // read while another was: the open one is answered first
        const AgentConfirmRequest& read = *request.value;
        if (!read.agents.empty()) return set(&AppState::agentConfirm, read, Topic::question);
        fail(read.refusals.empty() ? "This item cannot be changed here." : read.refusals.front());
    };
    questions_.run("", &ReadingWork::agentConfirm, done, std::move(agents), turnOn);
}

void AppModel::cancelAgents() {
    set(&AppState::agentConfirm, std::nullopt, Topic::question);
}

PresetSurroundings AppModel::presetSurroundings() const {
    return {catalog(), deps_->macOSMajor(), state_.statuses, state_.statusErrors, state_.entries};
}

ActivePreset AppModel::activePreset(std::string name) const {
    return presetFromActive(state_.entries, catalog(), std::move(name));
}

void AppModel::askPreset(const Preset& preset) {
    set(&AppState::presetRequest, PresetRequest{Uuid::random(), planPreset(preset, presetSurroundings())},
        Topic::question);
}

void AppModel::importPreset(const fs::path& file) {
    const auto done = [this](const JobResult<DecodedPreset>& decoded) {
        if (!decoded.value) return fail(decoded.error);
        if (state_.presetRequest) return;  // read while another was: the open one is answered first
        PresetPlan plan = planPreset(decoded.value->preset, presetSurroundings());
        plan.unknown.insert(plan.unknown.end(), decoded.value->unknown.begin(), decoded.value->unknown.end());
        set(&AppState::presetRequest, PresetRequest{Uuid::random(), std::move(plan)}, Topic::question);
    };
    questions_.run("", &ReadingWork::preset, done, file);
}

void AppModel::cancelPreset() {
    set(&AppState::presetRequest, std::nullopt, Topic::question);
}

}  // namespace brell
