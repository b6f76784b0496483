// What is read with the system's tools, and switching LaunchAgents: always beside the main thread.

#include <algorithm>

#include "CorvaneBrell/Model/AppModel.h"

namespace brell {

// Rows are shown as they are read: first what the files say, then what launchd says of each agent, then with
// the task database, which takes seconds.
void AppModel::loadLoginItems() {
    runCounted(
        readings_, readingsUnderWay_, [this] { return readLoginItems(); },
        [this](const JobResult<LoginItems>& result) {
            endReading();
            if (!result.value) return fail(result.error);
            const LoginItems& items = *result.value;
            if (items.error) fail("launchd could not be asked for the login items: " + *items.error);
            lastDump_ = items.dump;
            // What was shown before is then still the best that is known.
            if (!items.error || !state_.loginItemsLoaded) showLoginItems(items);
            set(&AppState::btmUnavailable, !lastDump_, Property::btmUnavailable);
            set(&AppState::loginItemsLoaded, true, Property::loginItemsLoaded);
        });
    loadAgentDrift();
}

AppModel::LoginItems AppModel::readLoginItems() {
    showReading("Reading the LaunchAgents");
    LoginItems items;
    items.system = deps_->reader.systemAgents();
    try {
        items.user = deps_->reader.listUserAgents();
    } catch (const std::exception& error) {
        items.error = error.what();  // the others are shown all the same
    }
    const auto showSoFar = [this, &items] {
        readings_.report([this, soFar = items] {
            LoginItems shown = soFar;
            shown.dump = lastDump_;
            if (!state_.loginItemsLoaded) showLoginItems(shown);
        });
    };
    showSoFar();
    for (std::size_t i = 0; i < items.user.size() && !readings_.isEnding(); ++i) {
        showReading("Asking launchd about each LaunchAgent", i, items.user.size());
        if (const auto& label = items.user[i].label())
            items.user[i].loaded = deps_->reader.loadedState(*label);
    }
    showSoFar();
    showReading("Reading the background task database");
    if (!readings_.isEnding()) items.dump = deps_->btmReader.dump();
    return items;
}

void AppModel::showLoginItems(const LoginItems& items) {
    set(&AppState::loginItems,
        LoginItemsMerger::merge(items.user, items.system, items.dump, deps_->machine.uid),
        Property::loginItems);
}

void AppModel::loadAgentDrift() {
    runCounted(
        readings_, readingsUnderWay_, [this] { return readAgentDrift(); },
        [this](JobResult<std::vector<AgentDrift>> result) {
            endReading();
            if (result.value)
                set(&AppState::driftedAgents, std::move(*result.value), Property::driftedAgents);
        });
}

std::vector<AgentDrift> AppModel::readAgentDrift() {
    std::vector<AgentDrift> drifted;
    for (const JournalEntry& entry : deps_->journal->entries(EntryStatus::applied)) {
        if (!entry.agent || readings_.isEnding()) continue;
        try {
            if (auto drift = agentDrift(entry, deps_->toggle.currentState(entry.agent->label)))
                drifted.push_back(std::move(*drift));
        } catch (const std::exception&) {
            // Not known to have drifted; the page shows what launchd says of the others.
        }
    }
    return drifted;
}

void AppModel::showReading(std::string what, std::size_t done, std::size_t total) {
    readings_.report([this, activity = Activity{std::move(what), done, total}] {
        set(&AppState::readingActivity, activity, Property::readingActivity);
    });
}

void AppModel::endReading() {
    if (readingsUnderWay_ == 0) set(&AppState::readingActivity, std::nullopt, Property::readingActivity);
}

// One volume after the other. The first time each is shown as it answers; later the old answers stay until
// all are there.
void AppModel::loadVolumes() {
    runCounted(
        readings_, readingsUnderWay_,
        [this, first = state_.volumes.empty()] {
            std::vector<VolumeIndexStatus> statuses;
            const std::vector<std::string> volumes =
                SpotlightStatusReader::mountedVolumes(deps_->machine.systemRoot);
            for (const std::string& volume : volumes) {
                if (readings_.isEnding()) break;
                showReading("Asking each volume about Spotlight", statuses.size(), volumes.size());
                for (VolumeIndexStatus& status : deps_->spotlight.statuses({volume}))
                    statuses.push_back(std::move(status));
                if (!first) continue;
                readings_.report([this, statuses] { set(&AppState::volumes, statuses, Property::volumes); });
            }
            return statuses;
        },
        [this](JobResult<std::vector<VolumeIndexStatus>> result) {
            endReading();
            if (!result.value) return fail(result.error);
            set(&AppState::volumes, std::move(*result.value), Property::volumes);
        });
}

void AppModel::askAgents(const std::vector<std::string>& rowIDs, bool turnOn) {
    AgentConfirmRequest request{Uuid::random(), AgentConfirmRequest::Mode::single, "", {}, {}, {}, turnOn};
    for (const LoginItemRow& row : state_.loginItems) {
        if (!row.record || std::find(rowIDs.begin(), rowIDs.end(), row.id) == rowIDs.end()) continue;
        try {
            const std::vector<std::string> commands =
                turnOn ? deps_->toggle.previewOn(*row.record) : deps_->toggle.previewOff(*row.record);
            request.commands.insert(request.commands.end(), commands.begin(), commands.end());
            request.agents.push_back(*row.record);
        } catch (const std::exception& error) {
            request.refusals.push_back(error.what());
        }
    }
    if (request.agents.empty())
        return fail(request.refusals.empty() ? "This item cannot be changed here."
                                             : request.refusals.front());
    if (request.agents.size() > 1) request.mode = AgentConfirmRequest::Mode::all;
    request.title = std::string(turnOn ? "Turn on " : "Turn off ") +
                    (request.agents.size() == 1 ? request.agents.front().label().value_or("")
                                                : std::to_string(request.agents.size()) + " items");
    set(&AppState::agentConfirm, std::move(request), Property::agentConfirm);
}

std::optional<std::string> AppModel::whyNotSwitched(const LaunchAgentRecord& agent) const try {
    deps_->toggle.validate(agent);
    return std::nullopt;
} catch (const std::exception& error) {
    return error.what();
}

void AppModel::cancelAgents() {
    set(&AppState::agentConfirm, std::nullopt, Property::agentConfirm);
}

void AppModel::confirmAgents() {
    if (!state_.agentConfirm) return;
    const AgentConfirmRequest request = *state_.agentConfirm;
    cancelAgents();
    change(request.title, {}, [this, request] {
        Change made;
        made.name = request.agents.front().label().value_or("");
        made.agentsTouched = true;
        for (const LaunchAgentRecord& agent : request.agents) {
            if (changes_.isEnding()) break;
            reportProgress(request.title, made.made.size() + made.restored.size(), request.agents.size());
            try {
                JournalEntry entry =
                    request.turningOn ? deps_->toggle.turnOn(agent) : deps_->toggle.turnOff(agent);
                (entry.status == EntryStatus::restored ? made.restored : made.made)
                    .push_back(std::move(entry));
            } catch (const std::exception& error) {
                made.failures.push_back(error.what());
            }
        }
        return made;
    });
}

}  // namespace brell
