// Relaunching Finder and the Dock, one after the other, without ever forcing a quit; and which tweaks wait
// for it.

#include "BrellCore/Journal/JournalPlace.h"
#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Model/AppModel.h"

namespace brell {

std::int64_t AppModel::processNow(EffectClass effect) const {
    for (const Relauncher::Target target : Relauncher::targetsFor({effect}))
        for (const auto instance :
             applications_.running(std::string(Relauncher::facts(target).bundleIdentifier)))
            return applications_.processNumber(instance);
    return 0;
}

// The list is read anew each time: another run of the program may have noted something.
std::string AppModel::updateRelaunches(const std::function<void(PendingRelaunches&)>& change) {
    if (state_.isLeaving) return {};
    std::optional<std::filesystem::path> lock;
    if (!options().dryRun) lock = journalDirectory_ / relaunchLockName;
    const auto [kept, whyNot] = updatePendingRelaunches(ownStore_, lock, [&](PendingRelaunches& pending) {
        dropShown(pending, catalog(), [this](EffectClass effect) { return processNow(effect); });
        change(pending);
    });
    // Where nothing waits any more, nothing is left of a relaunch that did not succeed.
    if (kept.empty() && state_.relaunchReport && !state_.relaunchReport->isComplete)
        set(&AppState::relaunchReport, std::nullopt, Topic::notices);
    set(&AppState::pendingRelaunches, kept, Topic::notices);
    return whyNot;
}

void AppModel::dropShownRelaunches() {
    const std::string whyNot = updateRelaunches([](PendingRelaunches&) {});
    if (!whyNot.empty()) fail(whyNot);
}

std::string AppModel::noteRelaunches(const ChangeOutcome& outcome) {
    if (outcome.before.empty()) return {};
    return updateRelaunches([&](PendingRelaunches& pending) {
        noteChange(pending, {outcome.before, outcome.touched}, catalog(),
                   [this](EffectClass effect) { return processNow(effect); });
    });
}

void AppModel::askRelaunch() {
    const std::vector<Relauncher::Target> targets =
        Relauncher::targetsFor(pendingEffects(state_.pendingRelaunches, catalog()));
    if (targets.empty() || relaunch_) return;
    set(&AppState::relaunchRequest, RelaunchRequest{Uuid::random(), targets}, Topic::question);
}

void AppModel::cancelRelaunch() {
    set(&AppState::relaunchRequest, std::nullopt, Topic::question);
}

void AppModel::confirmRelaunch() {
    if (!state_.relaunchRequest) return;
    const std::vector<Relauncher::Target> targets = state_.relaunchRequest->targets;
    cancelRelaunch();
    set(&AppState::relaunchReport, std::nullopt, Topic::notices);  // of an earlier one
    relaunchNext(targets, {}, true);
}

void AppModel::relaunchNext(std::vector<Relauncher::Target> targets, const std::vector<std::string>& lines,
                            bool isComplete) {
    if (targets.empty()) {
        relaunch_ = nullptr;
        set(&AppState::relaunchActivity, std::nullopt, Topic::activity);
        return set(&AppState::relaunchReport, RelaunchReport{join(lines, " "), isComplete}, Topic::notices);
    }
    const Relauncher::Target target = targets.front();
    const Relauncher::TargetFacts& app = Relauncher::facts(target);
    const std::size_t total = lines.size() + targets.size();
    set(&AppState::relaunchActivity,
        Activity{"Relaunching " + std::string(app.name), lines.size(), total == 1 ? 0 : total},
        Topic::activity);
    targets.erase(targets.begin());
    const auto done = [this, target, &app, targets, lines, isComplete](Relauncher::Outcome outcome) {
        std::vector<std::string> soFar = lines;
        soFar.push_back(Relauncher::line(target, outcome));
        if (!Relauncher::isDone(outcome)) return relaunchNext(targets, soFar, false);
        const std::string whyNot = updateRelaunches(
            [&](PendingRelaunches& pending) { dropEffect(pending, catalog(), app.effectClass); });
        if (!whyNot.empty()) fail(whyNot);
        relaunchNext(targets, soFar, isComplete);
    };
    relaunch_ = Relauncher::relaunch(target, options().dryRun, applications_, loop_, done);
}

}  // namespace brell
