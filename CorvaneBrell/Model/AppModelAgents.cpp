// What is read with the system's tools, and switching LaunchAgents: always beside the main thread.

#include <algorithm>
#include <functional>
#include <string_view>

#include "CorvaneBrell/Model/AppModel.h"

namespace brell {

namespace {

// What launchd does with agents that are all led to the same.
std::string_view wordsFor(const AgentTarget& target) {
    if (target == AgentTarget{true, false}) return "launchd stops it now and starts it no more at login.";
    if (target == AgentTarget{true, true})
        return "launchd starts it no more at login. It stays loaded until you log out, as it was before "
               "Brell "
               "turned it on.";
    if (target == AgentTarget{false, true}) return "launchd starts it again, now and at each login.";
    return "launchd starts it again at each login, but not now: it was not loaded before Brell turned it "
           "off.";
}

}  // namespace

std::string AgentConfirmRequest::explanation() const {
    const bool isSame =
        std::adjacent_find(targets.begin(), targets.end(), std::not_equal_to<>()) == targets.end();
    std::string words = "Brell runs exactly these commands: ";
    if (isSame && !targets.empty())
        words += wordsFor(targets.front());
    else
        words += turningOn ? "launchd starts them again at each login, and now those that were loaded before "
                             "Brell turned them off."
                           : "launchd starts them no more at login, and stops now those that were not loaded "
                             "before Brell turned them on.";
    return turningOn ? words : words + " The file that describes it stays as it is.";
}

// Rows are shown as they are read: first what the files say, then what launchd says of each agent, then with
// the task database, which takes seconds.
void AppModel::loadLoginItems() {
    runCounted(
        readings_, readingsUnderWay_,
        [this, isFirst = !state_.loginItemsLoaded] { return readLoginItems(isFirst); },
        [this](JobResult<LoginItems> result) {
            endReading();
            if (!result.value) return fail(result.error);
            LoginItems& items = *result.value;
            if (items.error) fail("launchd could not be asked for the login items: " + *items.error);
            // What was shown before is then still the best that is known.
            if (!items.error || !state_.loginItemsLoaded)
                showLoginItems(std::move(items.rows), std::move(items.refusals));
            set(&AppState::btmUnavailable, !items.hasDatabase, Property::btmUnavailable);
            set(&AppState::loginItemsLoaded, true, Property::loginItemsLoaded);
        });
    loadAgentDrift();
}

// On the lane.
AppModel::LoginItems AppModel::readLoginItems(bool showsSoFar) {
    showReading("Reading the LaunchAgents");
    LoginItems items;
    std::vector<LaunchAgentRecord> user;
    const std::vector<LaunchAgentRecord> system = deps_->reader.systemAgents();
    try {
        user = deps_->reader.listUserAgents();
    } catch (const std::exception& error) {
        items.error = error.what();  // the others are shown all the same
    }
    const auto merge = [&](const std::optional<BTMDump>& dump) {
        items.rows = LoginItemsMerger::merge(user, system, dump, deps_->machine.uid);
        items.hasDatabase = dump.has_value();
    };
    const auto showSoFar = [&] {
        if (!showsSoFar) return;
        merge(std::nullopt);
        readings_.report([this, rows = std::move(items.rows), refusals = items.refusals] {
            if (!state_.loginItemsLoaded) showLoginItems(rows, refusals);
        });
    };
    const auto noteRefusal = [&](const LaunchAgentRecord& agent) {
        if (auto why = deps_->toggle.whyNotSwitched(agent))
            items.refusals.insert_or_assign(agent.id(), *std::move(why));
    };
    for (std::size_t i = 0; i < user.size() && !readings_.isEnding(); ++i) noteRefusal(user[i]);
    showSoFar();
    for (std::size_t i = 0; i < user.size() && !readings_.isEnding(); ++i) {
        showReading("Asking launchd about each LaunchAgent", i, user.size());
        const auto& label = user[i].label();
        if (!label) continue;
        user[i].loaded = deps_->reader.loadedState(*label);
        noteRefusal(user[i]);  // it may be loaded from another file
    }
    showSoFar();
    showReading("Reading the background task database");
    merge(readings_.isEnding() ? std::nullopt : deps_->btmReader.dump());
    return items;
}

void AppModel::showLoginItems(std::vector<LoginItemRow> rows, std::map<std::string, std::string> refusals) {
    if (state_.loginItems == rows && state_.switchRefusals == refusals) return;
    state_.loginItems = std::move(rows);
    state_.switchRefusals = std::move(refusals);
    announce(Property::loginItems);
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

// The overrides are asked for once: each answer tells those of every agent.
std::vector<AgentDrift> AppModel::readAgentDrift() {
    std::vector<AgentDrift> drifted;
    std::vector<JournalEntry> switched = deps_->journal->entries(EntryStatus::applied);
    std::erase_if(switched, [](const JournalEntry& entry) { return !entry.agent; });
    if (switched.empty()) return drifted;
    AgentOverrides overrides;
    try {
        overrides = deps_->toggle.overrides();
    } catch (const std::exception&) {
        return drifted;  // not known of any
    }
    for (std::size_t i = 0; i < switched.size() && !readings_.isEnding(); ++i) {
        showReading("Asking launchd about what Brell switched", i, switched.size());
        try {
            const AgentState now = deps_->toggle.currentState(switched[i].agent->label, overrides);
            if (auto drift = agentDrift(switched[i], now)) drifted.push_back(std::move(*drift));
        } catch (const std::exception&) {
            // Not known to have drifted; the page shows what launchd says of the others.
        }
    }
    return drifted;
}

// On the lane.
void AppModel::showReading(std::string what, std::size_t done, std::size_t total) {
    if (!readingPace_.isDue(what)) return;
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
    const std::set<std::string> asked(rowIDs.begin(), rowIDs.end());
    std::vector<LaunchAgentRecord> agents;
    for (const LoginItemRow& row : state_.loginItems)
        if (row.record && asked.contains(row.id)) agents.push_back(*row.record);
    runCounted(
        questions_, questionsUnderWay_,
        [this, agents = std::move(agents), turnOn] { return agentConfirm(agents, turnOn); },
        [this](JobResult<AgentConfirmRequest> request) {
            if (!request.value) return fail(request.error);
            openAgentConfirm(std::move(*request.value));
        });
}

// On the lane: reads the agents' job files, and asks launchd about those that Brell has switched.
AgentConfirmRequest AppModel::agentConfirm(const std::vector<LaunchAgentRecord>& agents, bool turnOn) const {
    AgentConfirmRequest request{
        Uuid::random(), AgentConfirmRequest::Mode::single, "", {}, {}, {}, turnOn, {}};
    for (const LaunchAgentRecord& agent : agents) {
        if (questions_.isEnding()) break;
        try {
            const AgentPreview preview =
                deps_->toggle.preview(agent, turnOn ? AgentSwitch::on : AgentSwitch::off);
            request.commands.insert(request.commands.end(), preview.commands.begin(), preview.commands.end());
            request.targets.push_back(preview.target);
            request.agents.push_back(agent);
        } catch (const std::exception& error) {
            request.refusals.push_back(error.what());
        }
    }
    return request;
}

void AppModel::openAgentConfirm(AgentConfirmRequest request) {
    if (state_.agentConfirm) return;  // read while another was: the open one is answered first
    if (request.agents.empty())
        return fail(request.refusals.empty() ? "This item cannot be changed here."
                                             : request.refusals.front());
    if (request.agents.size() > 1) request.mode = AgentConfirmRequest::Mode::all;
    request.title = std::string(request.turningOn ? "Turn on " : "Turn off ") +
                    (request.agents.size() == 1 ? request.agents.front().label().value_or("")
                                                : std::to_string(request.agents.size()) + " items");
    set(&AppState::agentConfirm, std::move(request), Property::agentConfirm);
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
