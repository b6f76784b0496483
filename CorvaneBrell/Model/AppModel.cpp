#include "CorvaneBrell/Model/AppModel.h"

#include <fmt/format.h>

#include <algorithm>

#include "BrellCore/Engine/Report.h"
#include "BrellCore/Support/DurableFile.h"
#include "CorvaneBrell/DryRunStore.h"
#include "CorvaneBrell/Model/EntryText.h"
#include "CorvaneBrell/SafetyCheck.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

LaunchOptions fallbackFor(LaunchOptions options) {
    options.journalDirectory = throwAwayDirectory("fallback");
    options.dryRun = true;
    return options;
}

// Raises both reasons when that can't be had either.
std::unique_ptr<Dependencies> fallback(const LaunchOptions& options, const JournalError& reason,
                                       std::ostream& out) try {
    return std::make_unique<Dependencies>(fallbackFor(options), out);
} catch (const std::exception& error) {
    throw std::runtime_error(std::string(reason.what()) + " " + error.what());
}

// For reading: of equal times the later change stands first.
std::vector<JournalEntry> latestOnTop(std::vector<JournalEntry> entries) {
    std::reverse(entries.begin(), entries.end());
    const auto later = [](const JournalEntry& one, const JournalEntry& other) {
        return one.appliedAt > other.appliedAt;
    };
    // In a journal written by one clock they are in order already.
    if (!std::is_sorted(entries.begin(), entries.end(), later))
        std::stable_sort(entries.begin(), entries.end(), later);
    return entries;
}

bool isNoLongerInForce(const JournalEntry& entry, PreferenceReader& preferences) {
    return entry.kind == EntryKind::preference && entry.status == EntryStatus::applied &&
           !isInForce(entry, preferences);
}

}  // namespace

AppModel::AppModel(const LaunchOptions& options, MainLoop& loop, RunningApplications& applications,
                   std::ostream& out)
    : loop_(loop),
      applications_(applications),
      changes_(loop),
      refreshes_(loop),
      readings_(loop),
      questions_(loop) {
    try {
        deps_ = std::make_unique<Dependencies>(options, out);
        journalDirectory_ = deps_->journalDirectory();
    } catch (const JournalError& error) {
        deps_ = fallback(options, error, out);
        journalDirectory_ = options.journalDirectory.value_or(Journal::defaultDirectory(deps_->machine.home));
        state_.startupError = std::string("The change journal could not be opened: ") + error.what() +
                              ". Nothing can be changed until this is fixed.";
    }
    ownStore_ = deps_->machine.ownStore.get();
    // Agents are switched and put back on the changes' lane only.
    deps_->toggle.setWaitingHook([this](const std::string& label, std::chrono::seconds atMost) {
        reportProgress(fmt::format("Waiting up to {} seconds for {} to end", atMost.count(), label), 0, 0);
    });
    if (this->options().dryRun) {
        dryRunOwnStore_ = std::make_unique<DryRunStore>(*ownStore_, out);
        ownStore_ = dryRunOwnStore_.get();
    }
    own_ = std::make_unique<OwnPreferences>(*ownStore_);
    if (!this->options().dryRun) state_.safetyWarnings = safetyWarnings(deps_->machine);
    search_ = std::make_unique<TweakSearch>(catalog(), deps_->macOSMajor());
    if (const auto& named = this->options().openGroup)
        if (const auto screen = fromRawValue<Screen>(*named)) state_.screen = *screen;

    showEverything(readEverything());
    loadPendingRelaunches();
    loadHistory(std::nullopt);
}

AppModel::~AppModel() {
    // All at once, so that no lane waits for another's work.
    changes_.end();
    refreshes_.end();
    readings_.end();
    questions_.end();
}

std::optional<std::string> AppModel::whyNothingReal() const {
    if (state_.startupError) return *state_.startupError;
    if (options().dryRun)
        return "This is a dry run: what would be changed is printed, and nothing is changed.";
    return std::nullopt;
}

void AppModel::announce(Property property) {
    if (observer_) observer_(property);
}

void AppModel::show(Screen screen) {
    set(&AppState::screen, screen, Property::screen);
}

void AppModel::dismissError() {
    set(&AppState::errorMessage, std::nullopt, Property::errorMessage);
}

void AppModel::fail(const std::string& message) {
    set(&AppState::errorMessage, message, Property::errorMessage);
}

void AppModel::refreshAll() {
    // One that has not begun will see everything that this one would.
    if (refreshWaits_) return;
    refreshWaits_ = true;
    look(
        "Reading the settings and the journal",
        [this] {
            refreshes_.report([this] { refreshWaits_ = false; });
            return readEverything();
        },
        [this](JobResult<Refresh> result) {
            if (!result.value) return fail(result.error);
            // Read before a change was finished, perhaps one that counted on this look to be still to come.
            if (result.value->changesFinished != changesFinished_) return refreshAll();
            showEverything(std::move(*result.value));
        });
    loadHistory(historyDays_);
}

void AppModel::refreshShown() {
    refreshAll();
    showPendingRelaunches(notedRelaunches());
    if (state_.screen == Screen::loginItems) loadLoginItems();
    if (state_.screen == Screen::journal) loadAgentDrift();
    if (state_.screen == Screen::spotlight) loadVolumes();
}

AppModel::Refresh AppModel::readEverything() const {
    Refresh refresh;
    refresh.changesFinished = changesFinished_;
    const auto tweaks = catalog().available(deps_->macOSMajor());
    std::vector<StatusReading> readings = deps_->engine.statuses(tweaks);
    for (std::size_t i = 0; i < tweaks.size(); ++i) {
        if (const auto* failure = std::get_if<StatusFailure>(&readings[i]))
            refresh.statusErrors.emplace(tweaks[i]->id, describe(*failure));
        else
            refresh.statuses.emplace(tweaks[i]->id, std::get<TweakStatus>(std::move(readings[i])));
    }
    try {
        refresh.entries = latestOnTop(deps_->journal->all());
        const auto preferences = deps_->store.reader();
        for (const JournalEntry& entry : refresh.entries)
            if (isNoLongerInForce(entry, *preferences))
                refresh.drifted.push_back(driftedEntry(entry, deps_->store));
    } catch (const JournalError& error) {
        refresh.error = error.what();
    }
    return refresh;
}

void AppModel::showEverything(Refresh refresh) {
    set(&AppState::statuses, std::move(refresh.statuses), Property::statuses);
    set(&AppState::statusErrors, std::move(refresh.statusErrors), Property::statusErrors);
    if (refresh.error) return fail(*refresh.error);
    std::vector<JournalEntry> interrupted;
    std::copy_if(refresh.entries.rbegin(), refresh.entries.rend(), std::back_inserter(interrupted),
                 [](const JournalEntry& entry) { return entry.status == EntryStatus::capturing; });
    countChanges(refresh.entries);
    set(&AppState::entries, std::move(refresh.entries), Property::entries);
    set(&AppState::drifted, std::move(refresh.drifted), Property::drifted);
    if (changesUnderWay_ == 0) {  // else a change of ours looks interrupted, and an undo half done
        set(&AppState::interrupted, std::move(interrupted), Property::interrupted);
        pruneUndo();
    }
    if (state_.interrupted.empty()) set(&AppState::recoveryFailures, {}, Property::recoveryFailures);
}

std::string AppModel::nameOf(const JournalEntry& entry) const {
    return entryTitle(entry, catalog());
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

void AppModel::saveBeside(const fs::path& file, std::function<std::string()> contents) {
    ++savesUnderWay_;
    look(
        "Saving " + file.filename().string(),
        [file = fs::absolute(file), contents = std::move(contents)] {
            replaceFile(file, contents(), Durability::powerCut, 0666);
            return true;
        },
        [this](const JobResult<bool>& result) {
            --savesUnderWay_;
            if (!result.value) fail(result.error);
        });
}

void AppModel::makeRestoreScript(std::function<void(const std::string&)> show) {
    runCounted(
        questions_, questionsUnderWay_, [this] { return deps_->engine.restoreScriptText(); },
        [this, show = std::move(show)](const JobResult<std::string>& script) {
            if (!script.value) return fail(script.error);
            show(*script.value);
        });
}

void AppModel::saveRestoreScript(const fs::path& file) {
    saveBeside(file, [this] { return deps_->engine.restoreScriptText(); });
}

void AppModel::saveReport(const fs::path& file) {
    saveBeside(file, [this] {
        return Report::markdown(*deps_->journal, catalog(), macOSVersion(), systemNow(),
                                deps_->engine.driftedEntries());
    });
}

void AppModel::exportPreset(const Preset& preset, const fs::path& file) {
    saveBeside(file, [preset] {
        PresetFile::checkName(preset.name);
        return PresetFile::encode(preset);
    });
}

void AppModel::loadHistory(std::optional<int> days) {
    historyDays_ = days;
    using History = std::shared_ptr<const std::vector<ToldLine>>;
    look(
        "Reading the history",
        [this, days, shown = state_.history]() -> History {
            auto told = JournalWords::told(deps_->journal->history(days), catalog());
            return told == *shown ? shown : std::make_shared<const std::vector<ToldLine>>(std::move(told));
        },
        [this](const JobResult<History>& result) {
            if (result.value) set(&AppState::history, *result.value, Property::history);
        });
}

void AppModel::markReviewed(std::string_view cardID) try {
    ReviewedDates{*own_}.markReviewed(cardID, systemNow());
    set(&AppState::reviewedTick, state_.reviewedTick + 1, Property::reviewedTick);
} catch (const std::exception& error) {
    fail(error.what());
}

std::optional<TimeStamp> AppModel::reviewedDate(std::string_view cardID) const {
    return ReviewedDates{*own_}.date(cardID);
}

std::optional<WindowPlace> AppModel::windowPlace() const {
    const auto width = own_->number("windowWidth"), height = own_->number("windowHeight"),
               screen = own_->number("windowScreen");
    const auto isWithin = [](std::optional<double> number, double most) {
        return number && *number >= 0 && *number <= most;
    };
    if (!isWithin(width, 32767) || !isWithin(height, 32767) ||
        !isWithin(screen, static_cast<double>(enumTexts<Screen>.size() - 1)))
        return std::nullopt;
    return WindowPlace{static_cast<int>(*width), static_cast<int>(*height),
                       static_cast<Screen>(static_cast<int>(*screen))};
}

// Called when the window closes: a place that can't be kept is no reason to stay open.
void AppModel::keepWindowPlace(const WindowPlace& place) try {
    if (windowPlace() == place) return;
    own_->setNumber("windowWidth", place.width);
    own_->setNumber("windowHeight", place.height);
    own_->setNumber("windowScreen", static_cast<double>(place.screen));
} catch (const std::exception&) {
}

}  // namespace brell
