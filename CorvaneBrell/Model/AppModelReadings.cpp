// Readings with the system's tools, and those that the user waits for.

#include <algorithm>
#include <iterator>

#include "CorvaneBrell/Dependencies.h"
#include "CorvaneBrell/Model/AppModel.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

const std::string noTaskList =
    "macOS did not give its list of background items. It was refused, or took too long.";

PresetSurroundings surroundings(const Dependencies& dependencies, const AppState& state) {
    return {dependencies.catalog, dependencies.macOSMajor(), state.statuses, state.statusErrors,
            state.entries};
}

}  // namespace

// Of the results of a search login items are a part, once they were read.
void AppModel::readShown(const TaskSource& tasks) {
    if (state_.isSearching) {
        if (state_.loginItemsLoaded) readLoginItems(tasks);
        return;
    }
    if (state_.screen == Screen::loginItems) readLoginItems(tasks);
    if (state_.screen == Screen::journal) loadAgentDrift();
    if (state_.screen == Screen::spotlight) loadVolumes();
}

void AppModel::loadLoginItems() {
    readLoginItems({own_.readsTaskList(), tasks_});
}

// Rows are shown as they are read, the first time.
void AppModel::readLoginItems(const TaskSource& tasks) {
    Posted<LoginItems> soFar;
    if (!state_.loginItemsLoaded) {
        if (!state_.seenItems.jobs) put(&AppState::seenItems, own_.seenItems());
        soFar = readings_.posted<LoginItems>([this](LoginItems items) {
            if (!state_.loginItemsLoaded) showLoginItems(std::move(items), false);
        });
    }
    const auto done = [this, isRead = tasks.isRead](JobResult<LoginItems> result) {
        if (!result.value) return fail(result.error);
        if (result.value->error)
            fail("launchd could not be asked for the login items: " + *result.value->error);
        if (isRead) keepTaskList(result.value->tasks);
        if (isRead && !tasks_ && result.value->mayReadTasks) fail(noTaskList);
        showLoginItems(std::move(*result.value), true);
    };
    readings_.run("", &ReadingWork::loginItems, done, soFar, tasks);
    loadAgentDrift();
}

void AppModel::showLoginItems(LoginItems items, bool isAll) {
    bool isOther = false;
    // After an error the rows that were shown before are still the best that is known.
    if (!items.error || !state_.loginItemsLoaded) {
        isOther |= put(&AppState::loginItems, std::move(items.rows));
        isOther |= put(&AppState::switchRefusals, std::move(items.refusals));
        isOther |= put(&AppState::jobFacts, std::move(items.facts));
    }
    if (isAll) {
        // Read whole, and in sight.
        if (!items.error && state_.screen == Screen::loginItems) {
            if (!options().dryRun) own_.keepSeenItems(items.seen);
            state_.seenItems.beginWith(items.seen);
        }
        isOther |= put(&AppState::taskList, items.tasks          ? TaskList::read
                                            : items.mayReadTasks ? TaskList::offered
                                                                 : TaskList::hidden);
        isOther |= put(&AppState::loginItemsLoaded, true);
    }
    if (isOther) announce(Topic::loginItems);
}

void AppModel::askTaskList() {
    if (!state_.taskListActivity)
        set(&AppState::taskListRequest, TaskListRequest{Uuid::random()}, Topic::question);
}

void AppModel::confirmTaskList() {
    if (!state_.taskListRequest) return;
    set(&AppState::taskListRequest, std::nullopt, Topic::question);
    taskListCancelled_ = std::make_shared<std::atomic<bool>>(false);
    const auto done = [this](const JobResult<std::shared_ptr<const BTMDump>>& result) {
        const bool isWanted = !*taskListCancelled_;
        keepTaskList(isWanted && result.value ? *result.value : nullptr);
        if (tasks_) return readLoginItems({false, tasks_});
        if (isWanted) fail(noTaskList);
    };
    firstTaskList_.run("Reading macOS's list of background items", &ReadingWork::firstTaskList, done,
                       Cancellation(taskListCancelled_));
}

void AppModel::cancelTaskList() {
    if (taskListCancelled_) *taskListCancelled_ = true;
    set(&AppState::taskListRequest, std::nullopt, Topic::question);
}

// A list that macOS did not give is not asked for again unasked.
void AppModel::keepTaskList(std::shared_ptr<const BTMDump> tasks) {
    own_.keepReadingTaskList(tasks != nullptr);
    tasks_ = std::move(tasks);
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

void AppModel::readRecovery() {
    std::vector<JournalEntry> agents;
    std::copy_if(state_.interrupted.begin(), state_.interrupted.end(), std::back_inserter(agents),
                 [](const JournalEntry& entry) { return entry.agent.has_value(); });
    if (agents.empty()) return;
    const bool isFirst = state_.recoveryCommands.empty();
    const auto done = [this, agents](JobResult<RecoveryCommands> commands) {
        if (!commands.value) {  // no reason to keep the settings from being put back
            commands.value.emplace();
            for (const JournalEntry& entry : agents)
                commands.value->emplace(entry.id, PuttingBack{{}, commands.error});
        }
        set(&AppState::recoveryCommands, *std::move(commands.value), Topic::question);
    };
    questions_.run("", &ReadingWork::recovering, done, agents);
    if (!state_.recoveryDeferred && isFirst) loadAgentDrift();  // which of them launchd would have refused
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
        readLoginItems({false, tasks_});  // what was shown is so no more
    };
    questions_.run("Reading what would be run", &ReadingWork::agentConfirm, done, std::move(agents), turnOn);
}

void AppModel::cancelAgents() {
    set(&AppState::agentConfirm, std::nullopt, Topic::question);
}

void AppModel::askPreset(const Preset& preset) {
    set(&AppState::presetRequest,
        PresetRequest{Uuid::random(), planPreset(preset, surroundings(*deps_, state_))}, Topic::question);
}

void AppModel::importPreset(const fs::path& file) {
    const auto done = [this](const JobResult<DecodedPreset>& decoded) {
        if (!decoded.value) return fail(decoded.error);
        if (state_.presetRequest) return;  // read while another was: the open one is answered first
        PresetPlan plan = planPreset(decoded.value->preset, surroundings(*deps_, state_));
        plan.unknown.insert(plan.unknown.end(), decoded.value->unknown.begin(), decoded.value->unknown.end());
        set(&AppState::presetRequest, PresetRequest{Uuid::random(), std::move(plan)}, Topic::question);
    };
    questions_.run("Reading the preset", &ReadingWork::preset, done, file);
}

void AppModel::cancelPreset() {
    set(&AppState::presetRequest, std::nullopt, Topic::question);
}

void AppModel::askExport() {
    set(&AppState::exportRequest, ExportRequest{Uuid::random(), exportRows(state_.entries, titles())},
        Topic::question);
}

void AppModel::cancelExport() {
    set(&AppState::exportRequest, std::nullopt, Topic::question);
}

}  // namespace brell
