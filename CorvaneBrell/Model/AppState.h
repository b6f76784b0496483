// Everything the screens show, as plain values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "BrellCore/Background/LoginItems.h"
#include "BrellCore/Engine/TweakEngine.h"
#include "BrellCore/Review/Spotlight.h"
#include "CorvaneBrell/Model/DriftLine.h"
#include "CorvaneBrell/Model/JournalWords.h"
#include "CorvaneBrell/Model/PresetPlan.h"
#include "CorvaneBrell/Model/Relauncher.h"
#include "CorvaneBrell/Model/Screen.h"

namespace brell {

// The arguments of one apply that waits for an answer.
struct PendingApply {
    Tweak tweak;
    std::vector<PrefValue> values;
    std::optional<std::string> choiceID;
    bool usesSystemDefault = false;  // the keys are removed; there are no values then
    bool operator==(const PendingApply&) const = default;
};

// The requests: a sheet is open exactly while its request is there.

struct RelaunchRequest {
    Uuid id;
    std::vector<Relauncher::Target> targets;
    bool operator==(const RelaunchRequest&) const = default;
};

struct DriftRequest {
    enum class Mode {
        tweak,         // a tweak was to be turned off or changed
        restoreEntry,  // one entry was to be restored
        several,       // several were; the ones that did not drift are restored whatever is ticked
    };
    Uuid id;
    Mode mode;
    std::vector<DriftedEntry> entries;
    std::vector<Uuid> others;  // of several: the entries that did not drift

    std::string title() const;
    std::string explanation() const;
    bool operator==(const DriftRequest&) const = default;
};

struct AgentConfirmRequest {
    enum class Mode { single, all };
    Uuid id;
    Mode mode;
    std::string title;
    std::vector<std::string> commands;  // exactly what will run
    std::vector<LaunchAgentRecord> agents;
    std::vector<std::string> refusals;  // why the others of the asked ones are left out
    bool turningOn;
    std::vector<AgentTarget> targets;  // where each of the agents is led

    std::string explanation() const;
    bool operator==(const AgentConfirmRequest&) const = default;
};

struct RestoreRequest {
    Uuid id;
    std::string title;
    std::vector<Uuid> entries;       // newest first
    std::vector<std::string> lines;  // every key that will be put back, and every command
    bool operator==(const RestoreRequest&) const = default;
};

struct PresetRequest {
    Uuid id;
    PresetPlan plan;
    bool operator==(const PresetRequest&) const = default;
};

// What runs beside the main thread.
struct Activity {
    std::string what;  // "Restoring every change"
    std::size_t done = 0;
    std::size_t total = 0;  // 0: not known
    bool operator==(const Activity&) const = default;
};

// One action of this session that can be undone: what it made is restored, what it restored is made again.
struct SessionChange {
    std::string name;  // of the tweak or agent
    std::vector<Uuid> made;
    std::vector<Uuid> restored;
    bool operator==(const SessionChange&) const = default;
};

// A tweak whose keys hold something else than when its app was last started.
struct PendingRelaunch {
    std::string tweakID;
    EffectClass effect;
    std::string before;    // what the keys held then, rendered
    std::int64_t process;  // of the app then; 0 when it did not run
    bool operator==(const PendingRelaunch&) const = default;
};

// A part of the state, as announced when it changes.
enum class Property {
    startupError,
    screen,
    statuses,
    statusErrors,
    pendingEffects,
    pendingRelaunches,
    relaunchRequest,
    relaunchReport,
    errorMessage,
    pendingAfterDrift,
    interrupted,
    recoveryDeferred,
    recoveryFailures,
    driftRequest,
    entries,
    drifted,
    history,
    loginItems,  // and why some can't be switched
    loginItemsLoaded,
    btmUnavailable,
    agentConfirm,
    driftedAgents,
    volumes,
    reviewedTick,
    restoreRequest,
    presetRequest,
    presetReport,
    undoProof,  // and whether it is complete
    undoStack,
    relaunchActivity,
    changeActivity,
    lookActivity,
    readingActivity
};

struct AppState {
    std::optional<std::string> startupError;  // stays for the whole run
    std::vector<std::string> safetyWarnings;  // what could stand in the way of a change; likewise
    Screen screen = Screen::finder;
    TweakStatuses statuses;
    TweakStatusErrors statusErrors;
    std::set<EffectClass> pendingEffects;            // that wait for a relaunch
    std::vector<PendingRelaunch> pendingRelaunches;  // for which tweaks they wait
    std::optional<RelaunchRequest> relaunchRequest;
    std::optional<std::string> relaunchReport;
    std::optional<std::string> errorMessage;  // the last action's; stays until dismissed
    std::optional<PendingApply> pendingAfterDrift;
    std::vector<JournalEntry> interrupted;  // left behind by an earlier run
    bool recoveryDeferred = false;
    std::vector<std::string> recoveryFailures;
    std::optional<DriftRequest> driftRequest;
    std::vector<JournalEntry> entries;  // newest first
    std::vector<DriftedEntry> drifted;  // active changes that are no longer in force
    // What the history tells, newest first; the same object while that is the same. Never nullptr.
    std::shared_ptr<const std::vector<ToldLine>> history = std::make_shared<std::vector<ToldLine>>();
    std::vector<LoginItemRow> loginItems;
    std::map<std::string, std::string> switchRefusals;  // why the user's own can't be, by their records' ids
    bool loginItemsLoaded = false;
    bool btmUnavailable = false;
    std::optional<AgentConfirmRequest> agentConfirm;
    std::vector<AgentDrift> driftedAgents;  // switched by others since
    std::vector<VolumeIndexStatus> volumes;
    int reviewedTick = 0;  // counts the cards marked as reviewed
    std::optional<RestoreRequest> restoreRequest;
    std::optional<PresetRequest> presetRequest;
    std::vector<std::string> presetReport;  // what the last preset came to, a sentence each
    std::optional<std::string> undoProof;   // "3 of 3 keys are exactly as before."
    bool undoIsComplete = true;             // every key of undoProof is as before
    std::vector<SessionChange> undoStack;   // the last one is undone first
    std::optional<Activity> relaunchActivity;
    std::optional<Activity> changeActivity;
    std::optional<Activity> lookActivity;     // at preferences, journal and files; saving, too
    std::optional<Activity> readingActivity;  // with the system's tools
};

}  // namespace brell
