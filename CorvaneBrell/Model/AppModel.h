// The one object behind the window: all state that the screens show, and every action of the user.
#pragma once

#include <array>
#include <atomic>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "BrellCore/Catalog/Presets.h"
#include "BrellCore/Review/PrivacyChecklist.h"
#include "CorvaneBrell/Dependencies.h"
#include "CorvaneBrell/Model/AppState.h"
#include "CorvaneBrell/Model/BackgroundLane.h"
#include "CorvaneBrell/Model/NewsPace.h"
#include "CorvaneBrell/Model/OwnPreferences.h"
#include "CorvaneBrell/Model/PendingRelaunches.h"
#include "CorvaneBrell/Model/TweakSearch.h"
#include "CorvaneBrell/Platform/MainLoop.h"
#include "CorvaneBrell/Platform/RunningApplications.h"

namespace brell {

// The size of the window in points, and the page it shows.
struct WindowPlace {
    int width;
    int height;
    Screen screen;
    bool operator==(const WindowPlace&) const = default;
};

// Made, used and destroyed on the main thread, which nothing here blocks after the first look at everything.
// Changes run one after another beside it, and so do refreshes and the system's tools; all of them come back
// through the main loop, and only while the model lives. Every change of a property is announced once. What
// goes wrong becomes text in the state; no action throws. The end waits for the step that is running, and no
// further one begins.
class AppModel {
public:
    // Builds everything; with a journal that can't be opened, a dry run over a throw-away journal and the
    // reason in startupError. Raises std::exception only when even that fails. The collaborators must outlive
    // the model.
    AppModel(const LaunchOptions& options, MainLoop& loop, RunningApplications& applications,
             std::ostream& out);
    ~AppModel();

    const AppState& state() const { return state_; }
    const LaunchOptions& options() const { return deps_->options; }  // after the fallback
    const TweakCatalog& catalog() const { return deps_->catalog; }
    std::vector<const Tweak*> offeredTweaks() const { return catalog().available(deps_->macOSMajor()); }
    std::string macOSVersion() const { return deps_->machine.osVersion.text(); }
    // The one asked for, or the user's, also where a throw-away journal had to take its place.
    const std::filesystem::path& journalDirectory() const { return journalDirectory_; }

    // The observer is called on the main thread, after the property has its new value. It may call the model.
    void setObserver(std::function<void(Property)> observer) { observer_ = std::move(observer); }

    // What every changing action would come to instead of a real change; nothing when changes are real.
    std::optional<std::string> whyNothingReal() const;
    // Something runs beside the main thread: the state may be about to change.
    bool isBusy() const {
        return changesUnderWay_ + refreshesUnderWay_ + readingsUnderWay_ + questionsUnderWay_ > 0;
    }
    // Something that the user asked for is not finished: a change, or a file that is being saved.
    bool isWorking() const { return changesUnderWay_ + savesUnderWay_ > 0; }
    // A change of this tweak is under way or waits for its turn; turning it off again is not taken then.
    bool isChanging(const std::string& tweakID) const { return changing_.contains(tweakID); }

    void show(Screen screen);
    void refreshAll();
    void refreshShown();  // that, and what only the shown screen needs from the system's tools
    void dismissError();

    // Tweaks. A tweak with an active change is restored first, and made again as it was when the new one
    // fails. Values are one for each write.
    void apply(const std::string& tweakID, std::optional<std::vector<PrefValue>> values = std::nullopt,
               std::optional<std::string> choiceID = std::nullopt);
    void applyChoice(const std::string& tweakID, const std::string& choiceID);
    void turnOff(const std::string& tweakID);
    // Removes the tweak's keys, so that macOS's own values take effect; what they held can be undone.
    void useSystemDefault(const std::string& tweakID);

    // Undoing. The ask functions open a request that shows what would be put back.
    void askRestore(const Uuid& entryID);
    void askRestoreAll();
    void askUndoSince(const Uuid& entryID);  // this change and every later one
    void confirmRestore();
    void cancelRestore();
    void confirmDrift(const std::set<Uuid>& ticked);
    void cancelDrift();
    void undoLast();                                    // action of this session
    void applyAgain(const std::vector<Uuid>& entries);  // what others reset; the first originals are kept

    // Interrupted changes of an earlier run.
    void recover();
    void deferRecovery();

    // Relaunching Finder and the Dock.
    void askRelaunch();
    void confirmRelaunch();
    void cancelRelaunch();

    // LaunchAgents, by the ids of their rows.
    void askAgents(const std::vector<std::string>& rowIDs, bool turnOn);
    void confirmAgents();
    void cancelAgents();

    void loadLoginItems();
    void loadAgentDrift();  // only that; loadLoginItems does it, too
    void loadVolumes();
    void loadHistory(std::optional<int> days);

    // Presets.
    void askPreset(const Preset& preset);
    void importPreset(const std::filesystem::path& file);
    void confirmPreset();  // applies what is valid, in order, and reports the rest
    void cancelPreset();
    void exportPreset(const Preset& preset, const std::filesystem::path& file);
    // The changes that are active now as a preset, and what a preset can't carry of them.
    ActivePreset activePreset(std::string name) const {
        return presetFromActive(state_.entries, catalog(), std::move(name));
    }

    void saveRestoreScript(const std::filesystem::path& file);
    void saveReport(const std::filesystem::path& file);
    // Gives it to show once it is made; a failure becomes the error message instead.
    void makeRestoreScript(std::function<void(const std::string&)> show);

    void markReviewed(std::string_view cardID);
    std::optional<TimeStamp> reviewedDate(std::string_view cardID) const;

    // Finds tweaks and pages by what people call them.
    const TweakSearch& search() const { return *search_; }

    // The tweaks with an active change, drifted ones among them, and how many active changes each page has.
    std::vector<std::string> changedTweaks() const;
    std::size_t changedCount(Screen screen) const { return changedCounts_[static_cast<std::size_t>(screen)]; }

    // How the window was left; nothing when it never was open.
    std::optional<WindowPlace> windowPlace() const;
    void keepWindowPlace(const WindowPlace& place);

private:
    // What a change is to the undoing of the last action: nothing; all of it; those of its changes that
    // drifted and that the user confirmed, with the rest to follow, or only some of them.
    enum class Undo { none, whole, untilTheRest, part };

    // What one job beside the main thread came to.
    struct Change {
        std::string name;  // of what was done, for undoing it
        std::vector<JournalEntry> made;
        std::vector<JournalEntry> restored;
        std::vector<Uuid> drifted;                                 // left alone: they are asked for
        std::vector<DriftedEntry> driftedNow;                      // the same with what their keys hold
        std::vector<Uuid> others;                                  // wait for the answer, too
        DriftRequest::Mode driftMode = DriftRequest::Mode::tweak;  // of one that drifted
        std::vector<std::string> failures;
        std::vector<std::string> report;                           // of a preset
        std::optional<std::vector<std::string>> recoveryFailures;  // of a recovery
        std::vector<std::string> alreadyBack;        // names of entries that had been put back before
        std::string proof;                           // what the restored keys read as now
        bool isProved = true;                        // every one of them as before
        std::map<std::string, std::string> touched;  // by tweak: what its keys hold now
        std::vector<std::pair<Uuid, Uuid>> remade;   // entries made again, and what they are now
        Undo undo = Undo::none;
        bool leadsToOriginals = false;  // undoing it does not make again what it restored
        bool agentsTouched = false;
    };
    using Job = std::function<Change()>;

    struct Refresh {
        TweakStatuses statuses;
        TweakStatusErrors statusErrors;
        std::vector<JournalEntry> entries;
        std::vector<DriftedEntry> drifted;
        std::optional<std::string> error;
        int changesFinished = 0;  // when the reading began
    };
    struct LoginItems {
        std::vector<LoginItemRow> rows;
        std::map<std::string, std::string> refusals;
        bool hasDatabase = false;
        std::optional<std::string> error;  // launchd could not be asked for the user's own
    };

    void announce(Property property);
    // Announces once, and only when the value is another.
    template <class Value>
    void set(Value AppState::*field, std::type_identity_t<Value> value, Property property) {
        if (state_.*field == value) return;
        state_.*field = std::move(value);
        announce(property);
    }
    void fail(const std::string& message);
    std::string nameOf(const JournalEntry& entry) const;
    PresetSurroundings presetSurroundings() const {
        return {catalog(), deps_->macOSMajor(), state_.statuses, state_.statusErrors, state_.entries};
    }

    // A job of the refreshes, shown as what is being done.
    template <class Work, class Done>
    void look(std::string what, Work work, Done done) {
        if (!state_.lookActivity) set(&AppState::lookActivity, Activity{what}, Property::lookActivity);
        runCounted(
            refreshes_, refreshesUnderWay_,
            [this, what = std::move(what), work = std::move(work)]() mutable {
                refreshes_.report([this, activity = Activity{std::move(what)}] {
                    set(&AppState::lookActivity, activity, Property::lookActivity);
                });
                return work();
            },
            [this, done = std::move(done)](auto result) {
                if (refreshesUnderWay_ == 0)
                    set(&AppState::lookActivity, std::nullopt, Property::lookActivity);
                done(std::move(result));
            });
    }

    // One job on a lane, counted as under way until its result is back.
    template <class Work, class Done>
    void runCounted(BackgroundLane& lane, int& underWay, Work work, Done done) {
        ++underWay;
        lane.run(std::move(work), [&underWay, done = std::move(done)](auto result) {
            --underWay;
            done(std::move(result));
        });
    }

    Refresh readEverything() const;
    void showEverything(Refresh refresh);
    void countChanges(const std::vector<JournalEntry>& entries);
    void saveBeside(const std::filesystem::path& file, std::function<std::string()> contents);

    void change(std::string what, std::vector<std::string> tweakIDs, Job job,
                std::optional<PendingApply> ifDrifted = std::nullopt);
    void changeTo(const PendingApply& wish, std::string what);
    std::optional<JournalEntry> carryOut(const PendingApply& wish);
    Change carriedOut(const Job& job) const;
    void readDrift(Change& change) const;
    void finishChange(const JobResult<Change>& result, const std::optional<PendingApply>& ifDrifted);
    void dropInterrupted(const std::vector<JournalEntry>& restored);
    void showProof(const Change& change);
    void noteForUndo(const Change& change);
    void reportProgress(std::string what, std::size_t done, std::size_t total);
    JournalEntry makeAgain(const JournalEntry& entry);
    void addAgain(Change& change, const JournalEntry& entry);
    void restoreFirst(Change& change, const JournalEntry& active);
    void undoEntry(Change& change, const Uuid& id);
    void redoEntry(Change& change, const Uuid& id);
    void pruneUndo();

    void openDrift(const Change& change, const std::optional<PendingApply>& pending);
    void askRestoreOf(std::string title, const std::vector<JournalEntry>& entries);
    bool asksForDrift(const JournalEntry& entry) const;
    void restoreBeside(std::vector<Uuid> ids, std::set<Uuid> confirmed,
                       const std::optional<PendingApply>& then, Undo undo);
    Change restored(const std::string& what, const std::vector<JournalEntry>& entries,
                    const std::set<Uuid>& confirmed);

    LoginItems readLoginItems(bool showsSoFar);
    std::vector<AgentDrift> readAgentDrift();
    void showLoginItems(std::vector<LoginItemRow> rows, std::map<std::string, std::string> refusals);
    AgentConfirmRequest agentConfirm(const std::vector<LaunchAgentRecord>& agents, bool turnOn) const;
    void openAgentConfirm(AgentConfirmRequest request);
    void showReading(std::string what, std::size_t done = 0, std::size_t total = 0);  // from a job
    void endReading();

    std::int64_t processNow(EffectClass effect) const;
    KeptRelaunches notedRelaunches() const;
    void loadPendingRelaunches();
    void notePendingRelaunches(const Change& change);
    void showPendingRelaunches(const KeptRelaunches& pending);
    void relaunchNext(std::vector<Relauncher::Target> targets, const std::vector<std::string>& lines);
    void dropPendingRelaunches(EffectClass effect);

    MainLoop& loop_;
    RunningApplications& applications_;
    std::function<void(Property)> observer_;
    AppState state_;
    std::unique_ptr<Dependencies> deps_;
    std::filesystem::path journalDirectory_;
    std::unique_ptr<PreferenceStore> dryRunOwnStore_;
    PreferenceStore* ownStore_ = nullptr;
    std::unique_ptr<OwnPreferences> own_;
    std::unique_ptr<TweakSearch> search_;
    std::array<std::size_t, enumTexts<Screen>.size()> changedCounts_{};  // by screen
    std::optional<int> historyDays_;
    NewsPace changePace_, readingPace_;     // of the lanes
    std::multiset<std::string> changing_;   // tweaks with a change under way
    bool driftIsUndo_ = false;              // the open drift request comes from an undo
    bool refreshWaits_ = false;             // a refresh is asked for and has not begun
    std::atomic<int> changesFinished_ = 0;  // read by the lanes
    int changesUnderWay_ = 0, refreshesUnderWay_ = 0, readingsUnderWay_ = 0, questionsUnderWay_ = 0;
    int savesUnderWay_ = 0;        // of the refreshes
    Relauncher::Handle relaunch_;  // while one is under way

    // Last: their threads use the above.
    BackgroundLane changes_;
    BackgroundLane refreshes_;  // of preferences and journal; saves files, too
    BackgroundLane readings_;   // with the system's tools
    BackgroundLane questions_;  // what the user waits for: short, and behind nothing that is long
};

}  // namespace brell
