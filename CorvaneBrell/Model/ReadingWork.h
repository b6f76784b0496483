// Every reading beside the main thread, and the saving of files that the user asked for.
#pragma once

#include <atomic>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "BrellCore/Catalog/Presets.h"
#include "CorvaneBrell/Model/AppState.h"
#include "CorvaneBrell/Model/Progress.h"

namespace brell {

struct Dependencies;

// One look at everything.
struct Everything {
    TweakStatuses statuses;
    TweakStatusErrors statusErrors;
    std::vector<JournalEntry> entries;  // newest first
    std::vector<DriftedEntry> drifted;
    bool isChangedElsewhere = false;   // another run is just making the change that is not finished
    std::optional<std::string> error;  // why the journal can't be read; there are no entries then
    bool isDamaged = false;            // that is why
    std::optional<std::string> lack;   // of changes in the journal
};

struct LoginItems {
    std::vector<LoginItemRow> rows;
    std::map<std::string, std::string>
        refusals;                           // why the user's own can't be switched, by their records' ids
    std::map<std::string, JobFacts> facts;  // likewise, of all that there is something to tell of
    SeenItems seen;                         // by whoever sees the rows
    std::shared_ptr<const BTMDump> tasks;   // macOS's list of background items that the rows came from
    bool mayReadTasks = false;              // the user is an administrator
    std::optional<std::string> error;       // why launchd could not be asked for the user's own
};

// Where the login items take macOS's list of background items from.
struct TaskSource {
    bool isRead = false;                       // anew, from macOS
    std::shared_ptr<const BTMDump> kept = {};  // else this one, or none
};

// Ends a reading that waits for a person. Set on the main thread.
using Cancellation = std::shared_ptr<const std::atomic<bool>>;

using Volumes = std::vector<VolumeIndexStatus>;
using ToldHistory = std::shared_ptr<const std::vector<ToldLine>>;

// The journal of this directory is damaged, and its history can make that good. Raises nothing.
bool isDamaged(const std::filesystem::path& journalDirectory);

// Of one thread; it shares nothing with the main thread but the collaborators, which must outlive it. Every
// operation may raise std::exception.
class ReadingWork {
public:
    ReadingWork(Dependencies& dependencies, Progress& progress) : deps_(dependencies), progress_(progress) {}

    // begun is called before anything is read.
    Everything everything(const Posted<>& begun);
    // Lines of the last so many days, or all. Gives what is shown where it tells the same.
    ToldHistory history(std::optional<int> days, const ToldHistory& shown);

    // With the system's tools, which may take seconds. soFar gets what is known in the meantime, if it is
    // asked for.
    LoginItems loginItems(const Posted<LoginItems>& soFar, const TaskSource& tasks);
    // The first reading: someone may have to type a password for macOS, and gets two minutes. nullptr when
    // macOS did not give it.
    std::shared_ptr<const BTMDump> firstTaskList(const Cancellation& isCancelled);
    std::vector<DriftedEntry> driftedAgents();
    Volumes volumes(const Posted<Volumes>& soFar);

    // For an answer that the user waits for.
    AgentConfirmRequest agentConfirm(const std::vector<LaunchAgentRecord>& agents, bool turnOn);
    // Of those of the changes that are active.
    RestoreRequest restoring(const std::string& title, const std::vector<Uuid>& changes);
    RestoreRequest undoing(const SessionChange& action);
    // Without launchd, which may keep one waiting.
    RecoveryCommands recovering(const std::vector<JournalEntry>& agents);
    // What applying these again would do, commands included.
    RestoreRequest applyingAgain(const std::vector<DriftedEntry>& drifted);
    LeavingRequest leaving(const std::vector<Uuid>& concerned);
    DecodedPreset preset(const std::filesystem::path& file);
    std::string restoreScript();

    // Of a damaged journal in this directory. Raise std::exception, too, when there is nothing to rebuild it
    // from, and when they are ended.
    RebuildRequest rebuildRequest(const std::filesystem::path& directory, RebuiltFor use);
    RebuildReport rebuildJournal(const std::filesystem::path& directory, const RebuildPlan& plan,
                                 RebuiltFor use);

    // Make a file or replace an ordinary one, and give its path; the journal's own files, links and devices
    // are refused.
    std::filesystem::path saveRestoreScript(const std::filesystem::path& file);
    std::filesystem::path saveReport(const std::filesystem::path& file);
    std::filesystem::path savePreset(const std::filesystem::path& file, const Preset& preset);

private:
    std::shared_ptr<const BTMDump> taskList(const std::optional<CommandPatience>& patience);
    RebuildProgress rebuildProgress();
    void readEntries(Everything& everything);
    void addRestores(RestoreRequest& request, const std::vector<Uuid>& changes);
    RestoreStep makingAgain(const JournalEntry& entry, std::vector<std::string> commands) const;
    void noteFacts(const std::vector<LaunchAgentRecord>& jobs, LoginItems& items);
    void noteRefusal(const LaunchAgentRecord& agent, LoginItems& items) const;

    Dependencies& deps_;
    Progress& progress_;
};

}  // namespace brell
