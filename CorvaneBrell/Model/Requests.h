// The questions to the user, each a plain value: a sheet is open exactly while its request is there.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "BrellCore/Background/LaunchAgentReader.h"
#include "BrellCore/Catalog/Tweak.h"
#include "BrellCore/Journal/AgentCommands.h"
#include "CorvaneBrell/Model/EntryWords.h"
#include "CorvaneBrell/Model/PresetPlan.h"
#include "CorvaneBrell/Model/Relauncher.h"
#include "CorvaneBrell/Model/SessionUndo.h"

namespace brell {

// The arguments of one apply that waits for an answer.
struct PendingApply {
    Tweak tweak;
    std::vector<PrefValue> values;
    std::optional<std::string> choiceID;
    bool usesSystemDefault = false;  // the keys are removed; there are no values then
    bool operator==(const PendingApply&) const = default;
};

struct RelaunchRequest {
    Uuid id;
    std::vector<Relauncher::Target> targets;
    bool operator==(const RelaunchRequest&) const = default;
};

// Changes that others changed since, and what waits for the answer.
struct DriftRequest {
    Uuid id = {};
    std::vector<DriftedEntry> entries = {};
    std::vector<Uuid> others = {};  // newest first; did not drift, and are restored whatever is ticked
    bool isEverything = false;      // that is active, and not some changes that the user chose
    std::optional<PendingApply> pendingAfterDrift = {};  // made when all of it is restored
    std::optional<SessionChange> undoing = {};           // the action whose undoing goes on with the answer

    // One is asked for, and nothing else is restored: the button alone is the answer.
    bool isAboutOne() const { return entries.size() == 1 && others.empty(); }
    std::string title() const;
    std::string explanation() const;
    bool operator==(const DriftRequest&) const = default;
};

struct AgentConfirmRequest {
    Uuid id;
    std::string title;
    std::vector<std::string> commands;  // exactly what will run
    std::vector<LaunchAgentRecord> agents;
    std::vector<std::string> refusals;  // why the others of the asked ones are left out
    bool turningOn;
    std::vector<AgentTarget> targets;  // where each of the agents is led

    std::string explanation() const;
    bool operator==(const AgentConfirmRequest&) const = default;
};

// The question whether macOS may be asked for its list of background items, which may ask for a password.
struct TaskListRequest {
    Uuid id;
    bool operator==(const TaskListRequest&) const = default;
};

// One change of a request: every key that it concerns, or every command that is run.
struct RestoreStep {
    std::string title;
    std::string words;  // "Now Large, back to 41"
    std::vector<std::string> lines;
    bool runsCommands;
    bool operator==(const RestoreStep&) const = default;
};

// The commands that put an agent back, as they are known without asking launchd.
struct PuttingBack {
    std::vector<std::string> commands;
    std::optional<std::string> refusal;  // why none of them is run
    bool operator==(const PuttingBack&) const = default;
};

// Of interrupted agents, by their entries.
using RecoveryCommands = std::map<Uuid, PuttingBack>;

// Everything that a restore, or applying again, would do, and which of it was changed by others since and is
// asked for.
struct RestoreRequest {
    Uuid id;
    std::string title;
    std::vector<RestoreStep> steps;  // of the changes that did not drift
    DriftRequest changes;
    std::vector<DriftedEntry> again = {};  // these are made again instead, and nothing else is done

    bool isEmpty() const { return steps.empty() && changes.entries.empty(); }
    bool operator==(const RestoreRequest&) const = default;
};

struct PresetRequest {
    Uuid id;
    PresetPlan plan;
    bool operator==(const PresetRequest&) const = default;
};

// Which of the active changes go into a preset.
struct ExportRequest {
    Uuid id;
    std::vector<ExportRow> rows;
    bool operator==(const ExportRequest&) const = default;
};

}  // namespace brell
