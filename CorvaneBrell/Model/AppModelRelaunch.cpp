// Relaunching Finder and the Dock, one after the other, without ever forcing a quit; and which tweaks wait
// for it.

#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Model/AppModel.h"

namespace brell {

namespace {

bool needsRelaunch(EffectClass effect) {
    return effect == EffectClass::finderRelaunch || effect == EffectClass::dockRelaunch;
}

std::string rendered(const JournalEntry& entry, StoredValue JournaledWrite::*value) {
    std::vector<StoredValue> values;
    for (const JournaledWrite& write : entry.writes) values.push_back(write.*value);
    return renderedTogether(values);
}

KeptRelaunches kept(const std::vector<PendingRelaunch>& pending) {
    KeptRelaunches kept;
    for (const PendingRelaunch& one : pending)
        kept.emplace(one.tweakID, KeptRelaunch{one.before, one.process});
    return kept;
}

}  // namespace

// The number of the app that shows such a change; 0 while it does not run.
std::int64_t AppModel::processNow(EffectClass effect) const {
    for (const Relauncher::Target target : Relauncher::targetsFor({effect}))
        for (const auto instance :
             applications_.running(std::string(Relauncher::facts(target).bundleIdentifier)))
            return applications_.processNumber(instance);
    return 0;
}

// What was noted, also by another run of the program, without what an app that was started anew since shows
// already: the user has logged out and in, or it was relaunched in another way.
KeptRelaunches AppModel::notedRelaunches() const {
    KeptRelaunches pending = readPendingRelaunches(*ownStore_);
    std::erase_if(pending, [&](const auto& one) {
        const Tweak* tweak = catalog().tweak(one.first);
        const std::int64_t process = tweak ? processNow(tweak->effect) : 0;
        return process != 0 && process != one.second.process;
    });
    return pending;
}

// What is back as the app knows it does not wait any more.
void AppModel::loadPendingRelaunches() {
    KeptRelaunches pending = notedRelaunches();
    std::erase_if(pending, [&](const auto& one) {
        const auto status = state_.statuses.find(one.first);
        if (state_.statusErrors.contains(one.first)) return false;
        return status == state_.statuses.end() || renderedTogether(status->second.exact) == one.second.before;
    });
    showPendingRelaunches(pending);
}

// A change asks for a relaunch until its keys hold again what they held when the app was last started.
void AppModel::notePendingRelaunches(const Change& change) {
    if (change.touched.empty()) return;
    KeptRelaunches pending = notedRelaunches();
    const auto note = [&](const JournalEntry& entry, StoredValue JournaledWrite::*before) {
        const Tweak* tweak = catalog().tweak(entry.tweakID);
        if (tweak && needsRelaunch(tweak->effect))
            pending.emplace(entry.tweakID, KeptRelaunch{rendered(entry, before), processNow(tweak->effect)});
    };
    for (const JournalEntry& entry : change.restored) note(entry, &JournaledWrite::written);
    for (const JournalEntry& entry : change.made) note(entry, &JournaledWrite::original);
    std::erase_if(pending, [&](const auto& one) {
        const auto now = change.touched.find(one.first);
        return now != change.touched.end() && now->second == one.second.before;
    });
    showPendingRelaunches(pending);
}

void AppModel::showPendingRelaunches(const KeptRelaunches& pending) {
    std::vector<PendingRelaunch> waiting;
    std::set<EffectClass> effects;
    for (const auto& [tweakID, kept] : pending) {
        const Tweak* tweak = catalog().tweak(tweakID);
        if (!tweak) continue;
        waiting.push_back({tweakID, tweak->effect, kept.before, kept.process});
        effects.insert(tweak->effect);
    }
    try {
        writePendingRelaunches(kept(waiting), *ownStore_);
    } catch (const std::exception& error) {
        fail(error.what());
    }
    set(&AppState::pendingRelaunches, std::move(waiting), Property::pendingRelaunches);
    set(&AppState::pendingEffects, std::move(effects), Property::pendingEffects);
}

void AppModel::askRelaunch() {
    const std::vector<Relauncher::Target> targets = Relauncher::targetsFor(state_.pendingEffects);
    if (targets.empty() || relaunch_) return;
    set(&AppState::relaunchRequest, RelaunchRequest{Uuid::random(), targets}, Property::relaunchRequest);
}

void AppModel::cancelRelaunch() {
    set(&AppState::relaunchRequest, std::nullopt, Property::relaunchRequest);
}

void AppModel::confirmRelaunch() {
    if (!state_.relaunchRequest) return;
    const std::vector<Relauncher::Target> targets = state_.relaunchRequest->targets;
    cancelRelaunch();
    set(&AppState::relaunchReport, std::nullopt, Property::relaunchReport);  // of an earlier one
    relaunchNext(targets, {});
}

void AppModel::relaunchNext(std::vector<Relauncher::Target> targets, const std::vector<std::string>& lines) {
    if (targets.empty()) {
        relaunch_ = nullptr;
        set(&AppState::relaunchActivity, std::nullopt, Property::relaunchActivity);
        return set(&AppState::relaunchReport, join(lines, " "), Property::relaunchReport);
    }
    const Relauncher::Target target = targets.front();
    const std::size_t total = lines.size() + targets.size();
    set(&AppState::relaunchActivity,
        Activity{"Relaunching " + std::string(Relauncher::facts(target).name), lines.size(),
                 total == 1 ? 0 : total},
        Property::relaunchActivity);
    targets.erase(targets.begin());
    const auto done = [this, target, targets, lines](Relauncher::Outcome outcome) {
        std::vector<std::string> soFar = lines;
        soFar.push_back(Relauncher::line(target, outcome));
        if (Relauncher::isDone(outcome)) dropPendingRelaunches(Relauncher::facts(target).effectClass);
        relaunchNext(targets, soFar);
    };
    relaunch_ = Relauncher::relaunch(target, options().dryRun, applications_, loop_, done);
}

void AppModel::dropPendingRelaunches(EffectClass effect) {
    KeptRelaunches pending = notedRelaunches();
    std::erase_if(pending, [&](const auto& one) {
        const Tweak* tweak = catalog().tweak(one.first);
        return tweak && tweak->effect == effect;
    });
    showPendingRelaunches(pending);
}

}  // namespace brell
