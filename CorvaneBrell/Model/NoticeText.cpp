#include "CorvaneBrell/Model/NoticeText.h"

#include <fmt/format.h>

#include <algorithm>

#include "BrellCore/Support/Text.h"

namespace brell {

std::vector<std::string> waitingTitles(const AppState& state, const TweakCatalog& catalog,
                                       EffectClass effect) {
    std::vector<std::string> titles;
    for (const auto& [tweakID, pending] : state.pendingRelaunches)
        if (const Tweak* tweak = catalog.tweak(tweakID); tweak && tweak->effect == effect)
            titles.push_back(tweak->title);
    return titles;
}

std::optional<std::string> refusalOf(const Uuid& entryID, const AppState& state) {
    for (const auto* drifted : {&state.drifted, &state.driftedAgents})
        for (const DriftedEntry& one : *drifted)
            if (one.refusal && one.entry.id == entryID) return one.refusal;
    return std::nullopt;
}

namespace {

std::string capitalized(std::string_view name) {
    std::string text(name);
    if (!text.empty() && text.front() >= 'a' && text.front() <= 'z') text.front() += 'A' - 'a';
    return text;
}

std::string changes(std::size_t count) {
    return counted(count, "change", "changes");
}

// Changes of an earlier run whose recovery was put off.
std::string interruptedText(const AppState& state) {
    const std::size_t count = state.interrupted.size();
    if (!state.recoveryDeferred || count == 0) return {};
    const auto left = static_cast<std::size_t>(
        std::count_if(state.interrupted.begin(), state.interrupted.end(),
                      [&](const JournalEntry& entry) { return refusalOf(entry.id, state).has_value(); }));
    const std::string begun = changes(count) + (count == 1 ? " was" : " were") + " interrupted; ";
    if (left == count) return begun + "what was there before can't be put back; the Journal page says why.";
    return begun + "what was there before can be put back" +
           (left > 0 ? fmt::format(" for {} of them.", count - left) : ".");
}

std::string briefly(const OperatingSystemVersion& version) {
    const std::string text = fmt::format("{}.{}", version.major, version.minor);
    return version.patch == 0 ? text : fmt::format("{}.{}", text, version.patch);
}

// An interrupted change, or one of which the journal does not say enough, is told of elsewhere.
bool isFinished(const JournalEntry& entry) {
    return entry.status == EntryStatus::applied && !entry.lacksCapture();
}

// Only where something is to be looked at.
std::string updateText(const AppState& state, const TweakCatalog& catalog) {
    if (!state.macOSUpdate) return {};
    const auto& [from, to] = *state.macOSUpdate;
    std::size_t active = 0, unconfirmed = 0;
    for (const JournalEntry& entry : state.entries) {
        if (!isFinished(entry)) continue;
        ++active;
        const Tweak* tweak = from.major == to.major ? nullptr : catalog.tweak(entry.tweakID);
        if (tweak && tweak->isConfirmed(from.major) && !tweak->isConfirmed(to.major)) ++unconfirmed;
    }
    const auto drifted = static_cast<std::size_t>(
        std::count_if(state.drifted.begin(), state.drifted.end(),
                      [](const DriftedEntry& one) { return isFinished(one.entry); }));
    if (drifted + unconfirmed == 0) return {};
    std::string words =
        fmt::format("macOS was updated from {} to {} since Brell last ran", briefly(from), briefly(to));
    words += drifted == 0 ? "."
                          : fmt::format(": {} of {} no longer {}.", drifted, changes(active),
                                        drifted == 1 ? "holds" : "hold");
    if (unconfirmed > 0)
        words += fmt::format(" The effect of {} is not confirmed on macOS {} yet.", changes(unconfirmed),
                             to.major);
    return words;
}

}  // namespace

std::vector<Notice> standingNotices(const AppState& state, const TweakCatalog& catalog,
                                    const std::optional<std::string>& whyNothingReal) {
    std::vector<Notice> notices;
    const auto add = [&](NoticeKind kind, const std::string& words) {
        constexpr std::size_t most = 8 * mostOfASentence;
        if (!words.empty()) notices.push_back({kind, excerpt(words, most)});
    };
    add(state.isJournalDamaged ? NoticeKind::damagedJournal : NoticeKind::journal,
        state.journalError.value_or(""));
    if (state.journalLack)
        add(NoticeKind::olderJournal, *state.journalLack + ". The history may tell of them.");
    add(NoticeKind::error, state.errorMessage.value_or(""));
    add(NoticeKind::script, state.scriptNews.value_or(""));
    add(NoticeKind::failedRecovery, firstOf(state.recoveryFailures, " "));
    if (state.undoProof && !state.undoProof->isComplete)
        add(NoticeKind::incompleteUndo, state.undoProof->words);
    if (state.relaunchReport && !state.relaunchReport->isComplete)
        add(NoticeKind::failedRelaunch, state.relaunchReport->words);
    add(NoticeKind::warning, firstOf(state.safetyWarnings, " "));
    add(NoticeKind::interrupted, interruptedText(state));
    add(NoticeKind::macOSUpdate, updateText(state, catalog));
    if (!state.relaunchActivity) add(NoticeKind::relaunch, relaunchText(state, catalog));
    if (!state.startupError) add(NoticeKind::dryRun, whyNothingReal.value_or(""));
    return notices;
}

std::optional<Activity> activityOf(const AppState& state) {
    for (const auto* activity : {&state.changeActivity, &state.questionActivity, &state.relaunchActivity,
                                 &state.readingActivity, &state.fileActivity})
        if (*activity) return *activity;
    return std::nullopt;
}

std::vector<Notice> doneNotices(const AppState& state) {
    std::vector<Notice> notices;
    if (state.undoProof && state.undoProof->isComplete)
        notices.push_back({NoticeKind::done, state.undoProof->words});
    if (state.relaunchReport && state.relaunchReport->isComplete)
        notices.push_back({NoticeKind::done, state.relaunchReport->words});
    return notices;
}

std::string relaunchText(const AppState& state, const TweakCatalog& catalog) {
    const auto targets = Relauncher::targetsFor(pendingEffects(state.pendingRelaunches, catalog));
    if (targets.empty()) return {};
    std::size_t waiting = 0;
    for (const Relauncher::Target target : targets)
        waiting += waitingTitles(state, catalog, Relauncher::facts(target).effectClass).size();
    const std::string apps = targets.size() > 1
                                 ? fmt::format("{} apps wait", targets.size())
                                 : capitalized(Relauncher::facts(targets.front()).name) + " waits";
    return fmt::format("{} for a relaunch: {}", apps, changes(waiting));
}

std::set<std::string> newsToStayFor(const AppState& state) {
    std::set<std::string> news(state.recoveryFailures.begin(), state.recoveryFailures.end());
    const auto addLines = [&](const std::vector<std::string>& lines) {
        news.insert(lines.begin(), lines.end());
    };
    for (const auto* error : {&state.errorMessage, &state.scriptNews, &state.journalError})
        if (*error) news.insert(**error);
    if (state.driftRequest) news.insert(state.driftRequest->id.text());
    // Its first line tells how many changes were made.
    if (state.presetReport.size() > 1) addLines(state.presetReport);
    if (state.undoProof && !state.undoProof->isComplete) news.insert(state.undoProof->words);
    if (state.rebuildReport) addLines(state.rebuildReport->lines);
    if (state.leavingReport) addLines(state.leavingReport->lines);
    if (state.relaunchReport && !state.relaunchReport->isComplete) news.insert(state.relaunchReport->words);
    return news;
}

std::string activityText(const Activity& activity) {
    const std::string what = excerpt(activity.what, mostOfASentence);  // it may name a file
    if (activity.total == 0) return what + "…";
    return fmt::format("{}: {} of {}", what, activity.done, activity.total);
}

}  // namespace brell
