#include "CorvaneBrell/Model/AppModel.h"

#include <algorithm>
#include <tuple>

#include "CorvaneBrell/Dependencies.h"
#include "CorvaneBrell/DryRunStore.h"
#include "CorvaneBrell/SafetyCheck.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

LaunchOptions fallbackFor(LaunchOptions options) {
    options.journalDirectory = throwAwayDirectory("fallback");
    options.dryRun = true;
    return options;
}

bool isOlder(const OperatingSystemVersion& one, const OperatingSystemVersion& other) {
    return std::tie(one.major, one.minor, one.patch) < std::tie(other.major, other.minor, other.patch);
}

// Raises both reasons when that can't be had either.
std::unique_ptr<Dependencies> fallback(const LaunchOptions& options, const JournalError& reason,
                                       std::ostream& out) try {
    return std::make_unique<Dependencies>(fallbackFor(options), out);
} catch (const std::exception& error) {
    throw std::runtime_error(std::string(reason.what()) + " " + error.what());
}

}  // namespace

AppModel::AppModel(const LaunchOptions& options, MainLoop& loop, RunningApplications& applications,
                   std::ostream& out)
    : loop_(loop),
      applications_(applications),
      deps_(openDependencies(options, out)),
      journalDirectory_(state_.startupError ? options.journalDirectory.value_or(
                                                  Journal::defaultDirectory(deps_->machine.home))
                                            : deps_->journalDirectory()),
      dryRunOwnStore_(deps_->options.dryRun ? std::make_unique<DryRunStore>(*deps_->machine.ownStore, out)
                                            : nullptr),
      ownStore_(dryRunOwnStore_ ? *dryRunOwnStore_ : *deps_->machine.ownStore),
      own_(ownStore_),
      changes_(loop, *deps_, shownIn(&AppState::changeActivity)),
      refreshes_(loop, *deps_, shownIn(&AppState::fileActivity)),
      readings_(loop, *deps_, shownIn(&AppState::readingActivity)),
      questions_(loop, *deps_, shownIn(&AppState::questionActivity)),
      firstTaskList_(loop, *deps_, shownIn(&AppState::taskListActivity)) {
    state_.isJournalDamaged = state_.startupError && isDamaged(journalDirectory_);
    if (!this->options().dryRun) state_.safetyWarnings = safetyWarnings(deps_->machine);
    if (const auto& named = this->options().openGroup)
        if (const auto screen = fromRawValue<Screen>(*named)) state_.screen = *screen;

    if (const auto last = own_.lastMacOS(); last && isOlder(*last, deps_->machine.osVersion))
        state_.macOSUpdate = MacOSUpdate{*last, deps_->machine.osVersion};

    Progress untold;
    showEverything(ReadingWork(*deps_, untold).everything({}));
    const std::string whyNot = updateRelaunches(
        [this](PendingRelaunches& pending) { dropBack(pending, state_.statuses, state_.statusErrors); });
    if (!whyNot.empty()) fail(whyNot);
    loadHistory(std::nullopt);
}

std::unique_ptr<Dependencies> AppModel::openDependencies(const LaunchOptions& options,
                                                         std::ostream& out) try {
    return std::make_unique<Dependencies>(options, out);
} catch (const JournalError& error) {
    std::string reason = error.what();
    if (reason.ends_with('.')) reason.pop_back();  // the sentence goes on
    state_.startupError =
        "The change journal could not be opened: " + reason + ". Nothing can be changed until this is fixed.";
    return fallback(options, error, out);
}

AppModel::~AppModel() {
    // All at once, so that no lane waits for another's work.
    changes_.end();
    refreshes_.end();
    readings_.end();
    questions_.end();
    firstTaskList_.end();
}

const LaunchOptions& AppModel::options() const {
    return deps_->options;
}

const TweakCatalog& AppModel::catalog() const {
    return deps_->catalog;
}

const ChangeTitles& AppModel::titles() const {
    return deps_->titles;
}

std::vector<const Tweak*> AppModel::offeredTweaks() const {
    return catalog().available(deps_->macOSMajor());
}

std::string AppModel::macOSVersion() const {
    return deps_->machine.osVersion.text();
}

int AppModel::macOSMajor() const {
    return deps_->macOSMajor();
}

void AppModel::keepMacOS() {
    own_.keepMacOS(deps_->machine.osVersion);
}

std::optional<std::string> AppModel::whyNothingReal() const {
    if (state_.startupError) return *state_.startupError;
    if (options().dryRun)
        return "This is a dry run: what would be changed is printed, and nothing is changed.";
    return std::nullopt;
}

bool AppModel::isBusy() const {
    return changes_.isBusy() || refreshes_.isBusy() || readings_.isBusy() || questions_.isBusy() ||
           firstTaskList_.isBusy();
}

// The tools' answers from when it was shown before may be so no more.
void AppModel::show(Screen screen) {
    if (!put(&AppState::screen, screen)) return;
    announce(Topic::screen);
    const bool isFirstTime = screen == Screen::loginItems  ? !state_.loginItemsLoaded
                             : screen == Screen::spotlight ? state_.volumes.empty()
                                                           : false;
    if (!isFirstTime) readShown({false, tasks_});
}

// As for a page that is shown again.
void AppModel::showResults(bool areShown) {
    if (put(&AppState::isSearching, areShown)) readShown({false, tasks_});
}

void AppModel::dismissUpdate() {
    set(&AppState::macOSUpdate, std::nullopt, Topic::notices);
}

void AppModel::dismiss(std::optional<std::string> AppState::*message) {
    set(message, std::nullopt, Topic::notices);
}

void AppModel::refreshAll() {
    // One that has not begun will see everything that this one would.
    if (refreshWaits_) return;
    refreshWaits_ = true;
    const auto begun = refreshes_.posted<>([this] {
        refreshWaits_ = false;
        changesSeen_ = changesFinished_;
    });
    const auto done = [this](JobResult<Everything> result) {
        if (!result.value) return fail(result.error);
        // Read before a change was finished, perhaps one that counted on this look to be still to come.
        if (changesSeen_ != changesFinished_) return refreshAll();
        showEverything(std::move(*result.value));
    };
    refreshes_.run("Reading the settings and the journal", &ReadingWork::everything, done, begun);
    loadHistory(historyDays_);
}

void AppModel::refreshShown() {
    refreshAll();
    dropShownRelaunches();
    readShown({own_.readsTaskList(), tasks_});
}

// The password that macOS may ask for would bring the window to the front once more.
void AppModel::lookAgain() {
    refreshAll();
    dropShownRelaunches();
    readShown({false, tasks_});
}

void AppModel::showEverything(Everything everything) {
    const bool areOthers = put(&AppState::statuses, std::move(everything.statuses));
    if (put(&AppState::statusErrors, std::move(everything.statusErrors)) || areOthers)
        announce(Topic::settings);
    // Of one that could not be opened at the start a throw-away journal is read.
    if (!state_.startupError) put(&AppState::isJournalDamaged, everything.isDamaged);
    set(&AppState::journalLack, std::move(everything.lack), Topic::journal);
    set(&AppState::journalError, everything.error, Topic::journal);
    if (everything.error) return;

    std::vector<JournalEntry> interrupted;
    std::copy_if(everything.entries.rbegin(), everything.entries.rend(), std::back_inserter(interrupted),
                 [](const JournalEntry& entry) { return entry.status == EntryStatus::capturing; });
    countChanges(everything.entries);
    bool isOther = put(&AppState::entries, std::move(everything.entries));
    isOther |= put(&AppState::drifted, std::move(everything.drifted));
    if (!changes_.isBusy() &&
        !everything.isChangedElsewhere) {  // else a change under way looks interrupted, and an undo half done
        isOther |= put(&AppState::interrupted, std::move(interrupted));
        isOther |= put(&AppState::undo, state_.undo.pruned(state_.entries));
    }
    if (isOther) announce(Topic::journal);
    if (state_.interrupted.empty()) set(&AppState::recoveryFailures, {}, Topic::notices);
    readRecovery();
}

std::vector<std::string> AppModel::changedTweaks() const {
    std::set<std::string_view> active;
    for (const JournalEntry& entry : state_.entries)
        if (entry.isActive()) active.insert(entry.tweakID);
    std::vector<std::string> changed;
    for (const Tweak& tweak : catalog().all())
        if (active.contains(tweak.id)) changed.push_back(tweak.id);
    return changed;
}

// Once for all pages, each of which asks often.
void AppModel::countChanges(const std::vector<JournalEntry>& entries) {
    changedCounts_.fill(0);
    const auto count = [this](Screen screen) { ++changedCounts_[static_cast<std::size_t>(screen)]; };
    for (const JournalEntry& entry : entries) {
        if (!entry.isActive()) continue;
        count(Screen::journal);
        if (entry.kind == EntryKind::launchAgent)
            count(Screen::loginItems);
        else if (const Tweak* tweak = catalog().tweak(entry.tweakID))
            count(screenOf(tweak->group));
    }
}

void AppModel::loadHistory(std::optional<int> days) {
    historyDays_ = days;
    const auto done = [this](JobResult<ToldHistory> result) {
        if (result.value) set(&AppState::history, std::move(*result.value), Topic::history);
    };
    refreshes_.run("Reading the history", &ReadingWork::history, done, days, state_.history);
}

void AppModel::askRebuild() {
    if (!state_.isJournalDamaged && !state_.journalLack) return;
    const auto done = [this](JobResult<RebuildRequest> request) {
        if (!request.value) return fail(request.error);
        set(&AppState::rebuildRequest, std::move(*request.value), Topic::question);
    };
    refreshes_.run("Reading the history", &ReadingWork::rebuildRequest, done, journalDirectory_,
                   rebuiltFor());
}

void AppModel::confirmRebuild() {
    if (!state_.rebuildRequest) return;
    const RebuildPlan plan = state_.rebuildRequest->plan;
    cancelRebuild();
    ++savesUnderWay_;
    const auto done = [this](JobResult<RebuildReport> report) {
        --savesUnderWay_;
        if (!report.value) return fail(report.error);
        put(&AppState::isJournalDamaged, false);
        set(&AppState::rebuildReport, std::move(*report.value), Topic::question);
        refreshAll();
    };
    refreshes_.run("Rebuilding the journal", &ReadingWork::rebuildJournal, done, journalDirectory_, plan,
                   rebuiltFor());
}

RebuiltFor AppModel::rebuiltFor() const {
    return state_.startupError ? RebuiltFor::nextRun : RebuiltFor::thisRun;
}

void AppModel::cancelRebuild() {
    const bool wasAsked = put(&AppState::rebuildRequest, std::nullopt);
    if (put(&AppState::rebuildReport, std::nullopt) || wasAsked) announce(Topic::question);
}

void AppModel::makeRestoreScript(std::function<void(const std::string&)> show) {
    const auto done = [this, show = std::move(show)](const JobResult<std::string>& script) {
        if (!script.value) return fail(script.error);
        show(*script.value);
    };
    questions_.run("Making the restore script", &ReadingWork::restoreScript, done);
}

// A copy outlives the notice that says what it lacks.
void AppModel::saveRestoreScript(const fs::path& file) {
    if (const auto& lack = state_.journalLack)
        return fail(*lack +
                    ", and a script that is saved now would not undo them. Copy that script, or rebuild the "
                    "journal first.");
    save(&ReadingWork::saveRestoreScript, file);
}

void AppModel::saveReport(const fs::path& file) {
    if (const auto why = whyNothingReal()) return fail("There is no report to save. " + *why);
    save(&ReadingWork::saveReport, file);
}

void AppModel::exportPreset(const Preset& preset, const fs::path& file) {
    save(&ReadingWork::savePreset, file, preset);
}

template <class Job, class... Arguments>
void AppModel::save(Job job, const fs::path& file, Arguments... arguments) {
    ++savesUnderWay_;
    const auto done = [this](const JobResult<fs::path>& result) {
        --savesUnderWay_;
        if (!result.value) fail(result.error);
    };
    refreshes_.run("Saving " + file.filename().string(), job, done, fs::absolute(file),
                   std::move(arguments)...);
}

void AppModel::markReviewed(std::string_view cardID) try {
    ReviewedDates{own_}.markReviewed(cardID, systemNow());
    set(&AppState::reviewedTick, state_.reviewedTick + 1, Topic::privacy);
} catch (const std::exception& error) {
    fail(error.what());
}

std::optional<TimeStamp> AppModel::reviewedDate(std::string_view cardID) {
    return ReviewedDates{own_}.date(cardID);
}

}  // namespace brell
