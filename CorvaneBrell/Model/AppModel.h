// The one object behind the window: all state that the screens show, and every action of the user.
#pragma once

#include <array>
#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneBrell/LaunchOptions.h"
#include "CorvaneBrell/Model/ChangeWork.h"
#include "CorvaneBrell/Model/Lane.h"
#include "CorvaneBrell/Model/ObservedState.h"
#include "CorvaneBrell/Model/OwnPreferences.h"
#include "CorvaneBrell/Model/ReadingWork.h"
#include "CorvaneBrell/Platform/RunningApplications.h"

namespace brell {

// The main thread makes, uses and destroys it; nothing here blocks that after the first look at everything.
// The lanes do the work and can't reach the state; a change of the state is announced when it is made. What
// goes wrong becomes text in the state; no action throws. The end waits only for the step that is running.
class AppModel : private ObservedState {
public:
    // With a journal that can't be opened, a dry run over a throw-away one and the reason in startupError.
    // Raises std::exception only when even that fails. The collaborators must outlive the model.
    AppModel(const LaunchOptions& options, MainLoop& loop, RunningApplications& applications,
             std::ostream& out);
    ~AppModel();

    using ObservedState::setObserver;
    using ObservedState::state;
    const LaunchOptions& options() const;  // after the fallback
    const TweakCatalog& catalog() const;
    const ChangeTitles& titles() const;
    std::vector<const Tweak*> offeredTweaks() const;
    std::string macOSVersion() const;
    int macOSMajor() const;
    // The one asked for, or the user's, also where a throw-away journal had to take its place.
    const std::filesystem::path& journalDirectory() const { return journalDirectory_; }
    OwnPreferences& ownPreferences() { return own_; }
    void keepMacOS();  // as the one under which Brell last ran

    // Says why no action changes anything real; nothing when changes are real.
    std::optional<std::string> whyNothingReal() const;
    // Something runs beside the main thread: the state may be about to change.
    bool isBusy() const;
    // Something that the user asked for is not finished: a change, or a file that is being saved.
    bool isWorking() const { return changes_.isBusy() || savesUnderWay_ > 0; }
    // A change of this tweak is under way or waits for its turn; turning it off again is not taken then.
    bool isChanging(const std::string& tweakID) const { return changing_.contains(tweakID); }

    void show(Screen screen);
    void showResults(bool areShown);  // of a search, before the screen
    void refreshAll();
    void refreshShown();  // that, and what only the shown screen needs from the system's tools
    void lookAgain();     // likewise, but macOS is not asked for its list of background items
    void dismiss(std::optional<std::string> AppState::*message);  // one that stays until then
    void dismissUpdate();                                         // of macOS

    // Tweaks. An active change is restored first, and made again when the new one fails. A value a write.
    void apply(const std::string& tweakID, std::optional<std::vector<PrefValue>> values = std::nullopt,
               std::optional<std::string> choiceID = std::nullopt);
    void applyChoice(const std::string& tweakID, const std::string& choiceID);
    void turnOff(const std::string& tweakID);
    void restore(const std::string& tweakID);  // the change that is shown; one that is back stays as it is
    // Removes the tweak's keys, so that macOS's own values take effect; what they held can be undone.
    void useSystemDefault(const std::string& tweakID);

    // Undoing. The ask functions open a request that shows what would be put back.
    void askRestore(const Uuid& entryID);
    void askRestoreAll();
    void askUndoSince(const Uuid& entryID);  // this change and every later one
    void confirmRestore(const std::set<Uuid>& ticked = {});
    void cancelRestore();
    void confirmDrift(const std::set<Uuid>& ticked);
    void cancelDrift();
    // The last action of this session; where that runs commands, a request shows them first.
    void undoLast();
    void applyAgain(const std::vector<Uuid>& entries);  // what others reset; the first originals are kept
    void keepTheirs(const std::vector<Uuid>& entries);  // closes what others changed, without writing
    void recover(const RecoveryCommands& shown);        // what an earlier run left unfinished
    void deferRecovery();                               // until the next run, or until it is asked for
    void askRecovery();                                 // goes on at once where no commands are to be shown

    // A damaged journal. One that was damaged when Brell was opened is rebuilt for the next run.
    void askRebuild();
    void confirmRebuild();
    void cancelRebuild();

    // Leaving Brell: restores first, then takes its files away; after that nothing is changed or kept.
    void askLeaving();
    void confirmLeaving(const TakeAway& toTrash);
    void cancelLeaving();

    // Relaunching Finder and the Dock.
    void askRelaunch();
    void confirmRelaunch();
    void cancelRelaunch();

    // LaunchAgents, by the ids of their rows.
    void askAgents(const std::vector<std::string>& rowIDs, bool turnOn);
    void confirmAgents();
    void cancelAgents();

    // Asks macOS for its list of background items only once the user allowed it and macOS gave it.
    void loadLoginItems();
    void askTaskList();  // opens a request; nothing while the list is being read
    void confirmTaskList();
    void cancelTaskList();  // the request, or the reading under way
    void loadAgentDrift();  // only that; loadLoginItems does it, too
    void loadVolumes();
    void loadHistory(std::optional<int> days);

    // Presets.
    void askPreset(const Preset& preset);
    void importPreset(const std::filesystem::path& file);
    void confirmPreset();  // applies what is valid, in order, and reports the rest
    void cancelPreset();
    void askExport();  // of the changes that are active now
    void cancelExport();
    void exportPreset(const Preset& preset, const std::filesystem::path& file);

    void saveRestoreScript(const std::filesystem::path& file);
    void saveReport(const std::filesystem::path& file);  // of real changes only
    // Gives it to show once it is made; a failure becomes the error message instead.
    void makeRestoreScript(std::function<void(const std::string&)> show);

    void markReviewed(std::string_view cardID);
    std::optional<TimeStamp> reviewedDate(std::string_view cardID);

    // The tweaks with an active change, drifted ones among them, and how many active changes each page has.
    std::vector<std::string> changedTweaks() const;
    std::size_t changedCount(Screen screen) const { return changedCounts_[static_cast<std::size_t>(screen)]; }

private:
    void fail(const std::string& message) { set(&AppState::errorMessage, message, Topic::notices); }

    std::unique_ptr<Dependencies> openDependencies(const LaunchOptions& options, std::ostream& out);
    void showEverything(Everything everything);
    RebuiltFor rebuiltFor() const;
    void readLeaving();
    void readRecovery();  // what the sheet about it has to show
    void countChanges(const std::vector<JournalEntry>& entries);
    void readShown(const TaskSource& tasks);
    void readLoginItems(const TaskSource& tasks);
    void showLoginItems(LoginItems items, bool isAll);
    void keepTaskList(std::shared_ptr<const BTMDump> tasks);
    // Gives a file to save to the lane of the refreshes, with an operation of ReadingWork.
    template <class Job, class... Arguments>
    void save(Job job, const std::filesystem::path& file, Arguments... arguments);

    // Gives a change to its lane, an operation of ChangeWork; the tweaks are those it changes.
    template <class Job, class... Arguments>
    void change(std::string what, std::vector<std::string> tweakIDs, Job job, Arguments... arguments);
    void finishChange(const ChangeOutcome& outcome);
    void dropInterrupted(const std::vector<JournalEntry>& restored);
    std::string noteRelaunches(const ChangeOutcome& outcome);  // why they can't be kept, or nothing
    void askDrift(const DriftRequest& request);
    void askRestoreOf(const std::string& title, const std::vector<JournalEntry>& entries);
    void showRestore(JobResult<RestoreRequest> request);
    void restoreAnswered(const DriftRequest& changes, const std::set<Uuid>& ticked);

    std::int64_t processNow(EffectClass effect) const;
    std::string updateRelaunches(const std::function<void(PendingRelaunches&)>& change);  // likewise
    void dropShownRelaunches();
    void relaunchNext(std::vector<Relauncher::Target> targets, const std::vector<std::string>& lines,
                      bool isComplete);

    MainLoop& loop_;
    RunningApplications& applications_;
    const std::unique_ptr<Dependencies> deps_;
    const std::filesystem::path journalDirectory_;
    const std::unique_ptr<PreferenceStore> dryRunOwnStore_;  // over the machine's, in a dry run
    PreferenceStore& ownStore_;
    OwnPreferences own_;
    std::array<std::size_t, enumTexts<Screen>.size()> changedCounts_{};  // by screen
    std::optional<int> historyDays_;
    std::multiset<std::string> changing_;        // tweaks with a change under way
    bool refreshWaits_ = false;                  // a refresh is asked for and has not begun
    int changesFinished_ = 0, changesSeen_ = 0;  // by now, and when the last refresh began
    int savesUnderWay_ = 0;
    std::shared_ptr<const BTMDump> tasks_;  // macOS's list of background items as it was last read
    std::shared_ptr<std::atomic<bool>> taskListCancelled_;  // of the first reading
    Relauncher::Handle relaunch_;                           // while one is under way

    // Last: their threads end before anything else does.
    Lane<ChangeWork> changes_;
    Lane<ReadingWork> refreshes_;      // of preferences and journal; saves files, too
    Lane<ReadingWork> readings_;       // with the system's tools
    Lane<ReadingWork> questions_;      // what the user waits for: short, and behind nothing that is long
    Lane<ReadingWork> firstTaskList_;  // what waits for a person
};

}  // namespace brell
