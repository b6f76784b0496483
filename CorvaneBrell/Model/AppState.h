// Everything the screens show, as plain values.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "BrellCore/Background/LoginItems.h"
#include "BrellCore/Review/Spotlight.h"
#include "BrellCore/Support/EnumText.h"
#include "CorvaneBrell/Model/EntryWords.h"
#include "CorvaneBrell/Model/JobFacts.h"
#include "CorvaneBrell/Model/LeavingRequest.h"
#include "CorvaneBrell/Model/PendingRelaunches.h"
#include "CorvaneBrell/Model/Progress.h"
#include "CorvaneBrell/Model/RebuildRequest.h"
#include "CorvaneBrell/Model/Requests.h"
#include "CorvaneBrell/Model/Screen.h"
#include "CorvaneBrell/Model/SeenItems.h"
#include "CorvaneBrell/Model/SessionUndo.h"
#include "CorvaneBrell/Platform/OperatingSystem.h"

namespace brell {

// The outcome of relaunching.
struct RelaunchReport {
    std::string words;
    bool isComplete;  // every app was relaunched
    bool operator==(const RelaunchReport&) const = default;
};

// How macOS's own list of background items stands to the rows of the login items.
enum class TaskList {
    unknown,  // nothing has been read yet
    hidden,   // the user is no administrator, who alone may see it
    offered,  // not read: the user was not asked, or macOS did not give it
    read,
};

// macOS as it was when Brell was last open, where it is a newer one now.
struct MacOSUpdate {
    OperatingSystemVersion from, to;
    bool operator==(const MacOSUpdate&) const = default;
};

// The parts of the state; a change in one is announced.
enum class Topic {
    screen,
    settings,
    journal,
    history,
    loginItems,
    volumes,
    privacy,
    question,
    notices,
    activity
};
template <>
inline constexpr std::array<std::string_view, 10> enumTexts<Topic>{
    "screen",  "settings", "journal",  "history", "loginItems",
    "volumes", "privacy",  "question", "notices", "activity"};

struct AppState {
    std::optional<std::string> startupError;  // stays for the whole run
    bool isJournalDamaged = false;            // at the start or since; a history may tell what it held
    std::vector<std::string> safetyWarnings;  // what could stand in the way of a change; likewise

    // Topic::screen
    Screen screen = Screen::finder;
    bool isSearching = false;  // the results of a search stand before it

    // Topic::settings
    TweakStatuses statuses;
    TweakStatusErrors statusErrors;

    // Topic::journal
    std::optional<std::string> journalError;  // of the last look at the journal; stays until one succeeds
    std::optional<std::string> journalLack;   // of changes that its restore script undoes; no final stop
    std::vector<JournalEntry> entries;        // newest first
    std::vector<DriftedEntry> drifted;        // active changes no longer in force, or not to be undone
    std::vector<DriftedEntry> driftedAgents;  // and agents that others switched since, or likewise
    std::vector<JournalEntry> interrupted;    // left behind by an earlier run
    SessionUndo undo;

    // Topic::history: what it tells, newest first; the same object while that is the same. Never nullptr.
    std::shared_ptr<const std::vector<ToldLine>> history = std::make_shared<std::vector<ToldLine>>();

    // Topic::loginItems
    std::vector<LoginItemRow> loginItems;
    std::map<std::string, std::string> switchRefusals;  // why the user's own can't be, by their records' ids
    std::map<std::string, JobFacts> jobFacts;  // by their records' ids; of most there is nothing to tell
    SeenItems seenItems;                       // of the last visit
    bool loginItemsLoaded = false;
    TaskList taskList = TaskList::unknown;

    // Topic::volumes
    std::vector<VolumeIndexStatus> volumes;

    // Topic::privacy
    int reviewedTick = 0;  // counts the cards marked as reviewed

    // Topic::question
    bool recoveryDeferred = false;
    RecoveryCommands recoveryCommands;  // of the interrupted agents, once they are read
    std::optional<DriftRequest> driftRequest;
    std::optional<AgentConfirmRequest> agentConfirm;
    std::optional<RelaunchRequest> relaunchRequest;
    std::optional<TaskListRequest> taskListRequest;
    std::optional<RebuildRequest> rebuildRequest;
    std::optional<RebuildReport> rebuildReport;
    std::optional<RestoreRequest> restoreRequest;
    std::optional<PresetRequest> presetRequest;
    std::optional<ExportRequest> exportRequest;
    std::optional<LeavingRequest> leavingRequest;
    bool isLeaving = false;  // Brell's own files are being taken away, or are gone for the rest of the run
    std::optional<LeavingReport> leavingReport;  // once they are gone
    std::vector<std::string> presetReport;       // what the last preset came to, a sentence each

    // Topic::notices
    std::optional<std::string> errorMessage;  // the last action's; stays until dismissed
    std::optional<std::string> scriptNews;    // of the restore script, after a change that was made; likewise
    std::vector<std::string> recoveryFailures;
    std::optional<MacOSUpdate> macOSUpdate;  // until dismissed
    PendingRelaunches pendingRelaunches;
    std::optional<RelaunchReport> relaunchReport;
    std::optional<UndoProof> undoProof;  // of the last undo

    // Topic::activity
    std::optional<Activity> relaunchActivity;
    std::optional<Activity> changeActivity;
    std::optional<Activity> questionActivity;  // reading what a sheet will show
    std::optional<Activity> fileActivity;      // reading preferences and journal, saving files
    std::optional<Activity> readingActivity;   // with the system's tools
    std::optional<Activity> taskListActivity;  // a first reading, which waits for a person; can be cancelled
};

// Without a journal that can be read nothing can be changed or put back, nor while it is taken away and after
// that.
inline bool isLocked(const AppState& state) {
    return state.startupError || state.journalError || state.isLeaving;
}

}  // namespace brell
