#include "CorvaneBrell/Headless/HeadlessCommands.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "BrellCore/Journal/JournalRebuild.h"
#include "BrellCore/Support/DiskFlush.h"
#include "BrellCore/Support/JsonWriter.h"
#include "CorvaneBrell/Console.h"
#include "CorvaneBrell/Dependencies.h"
#include "CorvaneBrell/SafetyCheck.h"

namespace fs = std::filesystem;

namespace brell::HeadlessCommands {

namespace {

struct StateText {
    std::string operator()(const OnByBrell& state) const { return "onByBrell(" + state.entry.text() + ")"; }
    std::string operator()(const OffByBrell& state) const { return "offByBrell(" + state.entry.text() + ")"; }
    std::string operator()(const ChangedOutsideBrell& state) const {
        return "changedOutsideBrell(" + state.entry.text() + ")";
    }
    std::string operator()(const PerHost& state) const { return "perHost(key: \"" + state.key + "\")"; }
    std::string operator()(const Managed& state) const { return "managed(key: \"" + state.key + "\")"; }
    std::string operator()(const Unsupported& state) const { return "unsupported(" + state.message + ")"; }
    std::string operator()(const Off&) const { return "off"; }
    std::string operator()(const OnByDefault&) const { return "onByDefault"; }
    std::string operator()(const SetBeforeBrell&) const { return "setBeforeBrell"; }
};

struct StatusRow {
    std::string state;
    std::vector<StoredValue> effective;
};

StatusRow statusRow(const StatusReading& reading) {
    if (const auto* failure = std::get_if<StatusFailure>(&reading))
        return {"error: " + brell::describe(*failure), {}};
    const auto& status = std::get<TweakStatus>(reading);
    return {describe(status.state), status.effective};
}

void printStatusJSON(Dependencies& deps, std::ostream& out) {
    JsonWriter json(JsonWriter::Layout::pretty);
    json.beginArray();
    const std::vector<const Tweak*> tweaks = deps.catalog.available(deps.macOSMajor());
    const std::vector<StatusReading> readings = deps.engine.statuses(tweaks);
    for (std::size_t i = 0; i < tweaks.size(); ++i) {
        const StatusRow row = statusRow(readings[i]);
        json.beginObject();
        json.key("effective");
        json.beginArray();
        for (const StoredValue& value : row.effective) json.string(repairedUtf8(value.rendered()));
        json.endArray();
        json.key("id");
        json.string(tweaks[i]->id);
        json.key("state");
        json.string(repairedUtf8(row.state));
        json.endObject();
    }
    json.endArray();
    out << json.text() << '\n';
}

// A folder of the run's own for the tweak that takes one, so that no real folder of the user is ever chosen.
std::string screenshotsFolder(const fs::path& journalDirectory) {
    const fs::path folder = journalDirectory / "screenshots-fixture";
    createFolders(folder);
    return folder.string();
}

int quitAfterCapture(Dependencies& deps, const std::string& id, std::ostream& out) {
    const Tweak* tweak = deps.catalog.tweak(id);
    if (!tweak) {
        printLine(out, "refused " + id + ": not in the catalog");
        return ExitStatus::cannotStart;
    }
    try {
        deps.engine.apply(*tweak);
        printLine(out, "applied " + id + " (the hook did not fire)");
    } catch (const std::exception& error) {
        printLine(out, "refused " + id + ": " + error.what());
    }
    return ExitStatus::failure;
}

// The steps below give whether they went well.

bool applyAll(Dependencies& deps, std::ostream& out) {
    const auto apply = [&](const Tweak& tweak) {
        std::optional<std::vector<PrefValue>> values;
        if (std::holds_alternative<FolderKind>(tweak.kind))
            values = std::vector<PrefValue>{screenshotsFolder(deps.journalDirectory())};
        deps.engine.apply(tweak, std::move(values));
    };
    return applyEach(deps.catalog.available(deps.macOSMajor()), apply, out);
}

std::vector<LaunchAgentRecord> userAgents(const Dependencies& deps) try {
    return deps.reader.userAgents();
} catch (const std::exception&) {
    return {};  // an agent that can't be listed can't be found either, and that is what is said
}

bool toggleAgent(Dependencies& deps, const std::string& label, std::ostream& out) {
    const std::vector<LaunchAgentRecord> agents = userAgents(deps);
    const auto agent = std::find_if(agents.begin(), agents.end(),
                                    [&](const LaunchAgentRecord& record) { return record.label() == label; });
    if (agent == agents.end()) {
        printLine(out, "refused " + label + ": no such user LaunchAgent");
        return false;
    }
    try {
        for (const std::string& command : deps.toggle.previewOff(*agent)) printLine(out, "run " + command);
        const JournalEntry entry = deps.toggle.turnOff(*agent);
        printLine(out, "turned off " + label + " (entry " + entry.id.text() + ")");
        return true;
    } catch (const std::exception& error) {
        printLine(out, "refused " + label + ": " + error.what());
        return false;
    }
}

std::string joinedNames(const std::set<EffectClass>& effects) {
    std::set<std::string> names;  // sorted by text
    for (const EffectClass effect : effects) names.emplace(rawValue(effect));
    return join({names.begin(), names.end()}, ", ");
}

bool restoreAll(Dependencies& deps, std::ostream& out) {
    std::set<Uuid> confirmed;
    for (const JournalEntry& entry : deps.engine.driftedEntries()) confirmed.insert(entry.id);
    if (!confirmed.empty())
        printLine(out, "drifted entries confirmed for restore: " + std::to_string(confirmed.size()));

    const RestoreAllOutcome outcome = deps.engine.restoreAll(confirmed);
    for (const JournalEntry& entry : deps.journal->entries(outcome.restored))
        printLine(out, "restored " + entry.id.text() + (entry.failure ? ": " + *entry.failure : ""));
    for (const auto& [id, message] : outcome.failed) printLine(out, "failed " + id.text() + ": " + message);
    const std::size_t stillActive = deps.journal->active().size();
    if (stillActive > 0) printLine(out, "still active: " + std::to_string(stillActive));
    if (!outcome.pendingEffects.empty()) printLine(out, "pending: " + joinedNames(outcome.pendingEffects));
    return outcome.failed.empty() && stillActive == 0;
}

int run(Dependencies& deps, std::ostream& out, std::ostream& warnings) {
    const LaunchOptions& options = deps.options;
    if (options.statusJSON) {
        printStatusJSON(deps, out);
        return ExitStatus::success;
    }
    if (!options.dryRun)
        for (const std::string& warning : safetyWarnings(deps.machine))
            printLine(warnings, "warning: " + warning);
    if (options.quitAfterCapture) return quitAfterCapture(deps, *options.quitAfterCapture, out);
    deps.toggle.setWaitingHook([&out](const std::string& label, std::chrono::seconds atMost) {
        printLine(out, fmt::format("waiting up to {} seconds for {} to end", atMost.count(), label));
    });
    bool allWell = true;
    if (options.applyAll) allWell &= applyAll(deps, out);
    if (options.toggleAgent) allWell &= toggleAgent(deps, *options.toggleAgent, out);
    if (options.restoreAll) allWell &= restoreAll(deps, out);
    if (const auto trouble = deps.engine.untoldScriptTrouble()) printLine(warnings, "warning: " + *trouble);
    if (const auto lack = lackOfChanges(*deps.journal)) printLine(warnings, "warning: " + *lack + ".");
    return allWell ? ExitStatus::success : ExitStatus::failure;
}

}  // namespace

std::optional<int> runIfRequested(const LaunchOptions& options, std::ostream& out, std::ostream& warnings) {
    if (!options.isHeadlessRequest()) return std::nullopt;
    int failed = ExitStatus::cannotStart;
    try {
        Dependencies deps(options, out, warnings);
        failed = ExitStatus::failure;
        return run(deps, out, warnings);
    } catch (const std::exception& error) {
        printLine(out, std::string("error: ") + error.what());
        return failed;
    }
}

bool applyEach(const std::vector<const Tweak*>& tweaks, const std::function<void(const Tweak&)>& apply,
               std::ostream& out) {
    bool allWell = true;
    std::optional<std::string> busy;
    const auto refuse = [&](const Tweak& tweak, const std::string& reason) {
        printLine(out, "refused " + tweak.id + ": " + reason);
        allWell = false;
    };
    for (const Tweak* tweak : tweaks) {
        if (busy) {
            refuse(*tweak, *busy);
            continue;
        }
        try {
            apply(*tweak);
            printLine(out, "applied " + tweak->id);
        } catch (const EngineError& error) {
            refuse(*tweak, error.what());
            const auto* failure = std::get_if<JournalFailure>(&error.failure());
            if (failure && failure->kind == JournalFailure::Kind::isBusy) busy = error.what();
        } catch (const std::exception& error) {
            refuse(*tweak, error.what());
        }
    }
    return allWell;
}

std::string describe(const TweakState& state) {
    return std::visit(StateText(), state);
}

}  // namespace brell::HeadlessCommands
