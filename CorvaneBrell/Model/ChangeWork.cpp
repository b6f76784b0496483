#include "CorvaneBrell/Model/ChangeWork.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "BrellCore/Engine/KeysHold.h"
#include "BrellCore/Preferences/PreferenceStore.h"
#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Dependencies.h"
#include "CorvaneBrell/Model/PendingRelaunches.h"

namespace brell {

namespace {

// In the order of the tweak's writes.
std::vector<PrefValue> writtenValues(const JournalEntry& entry, const Tweak& tweak) {
    std::vector<PrefValue> values;
    for (const Write& write : tweak.writes)
        for (const JournaledWrite& made : entry.writes)
            if (made.key == write.key && made.written.value) values.push_back(*made.written.value);
    return values;
}

bool nothingIsStored(const Tweak& tweak, PreferenceReader& preferences) {
    return std::all_of(tweak.writes.begin(), tweak.writes.end(), [&](const Write& write) {
        return readIfPossible(write.key, preferences) == StoredValue::absent();
    });
}

// Nothing when a key can't be read: what was done is done all the same.
std::optional<std::string> renderedNow(const Tweak& tweak, PreferenceReader& preferences) {
    std::vector<StoredValue> values;
    for (const Write& write : tweak.writes) {
        auto value = readIfPossible(write.key, preferences);
        if (!value) return std::nullopt;
        values.push_back(*std::move(value));
    }
    return renderedTogether(values);
}

TweakEngine::Progress goOn(Progress& progress) {
    return [&progress](std::size_t done, std::size_t total) {
        progress.tell(done, total);
        return !progress.isEnding();
    };
}

}  // namespace

ChangeWork::ChangeWork(Dependencies& dependencies, Progress& progress)
    : deps_(dependencies), progress_(progress) {
    // Agents are switched and put back by this work only.
    deps_.toggle.setWaitingHook([&progress](const std::string& label, std::chrono::seconds atMost) {
        progress.tell(fmt::format("Waiting up to {} seconds for {} to end", atMost.count(), label));
    });
}

ChangeOutcome ChangeWork::apply(const PendingApply& wish) {
    ChangeOutcome outcome;
    const auto active = deps_.journal->activeEntry(wish.tweak.id);
    if (active && !restoreUnlessDrifted(outcome, *active)) {
        ask(outcome, {active->id}, {.pendingAfterDrift = wish});
        return finished(std::move(outcome));
    }
    try {
        carryOut(outcome, wish);
    } catch (const EngineError& error) {
        if (!active) throw;
        outcome.failures.push_back(error.what());
        // The user still has what was there before, and then there is nothing new to undo.
        tryStep(outcome.failures, [&] {
            makeAgain(outcome, *active);
            outcome.undo.remade.emplace_back(active->id, outcome.made.back().id);
        });
        if (!outcome.undo.remade.empty()) return finished(std::move(outcome));
    }
    outcome.undo.done = actionOf(outcome, wish.tweak.title);
    return finished(std::move(outcome));
}

ChangeOutcome ChangeWork::turnOff(const std::string& tweakID) {
    if (const auto active = deps_.journal->activeEntry(tweakID)) return restore(active->id);
    ChangeOutcome outcome;
    const Tweak& tweak = *deps_.catalog.tweak(tweakID);
    noteKeys(outcome, tweakID);
    outcome.made.push_back(deps_.engine.turnOff(tweak, false));
    outcome.undo.done = actionOf(outcome, tweak.title);
    return finished(std::move(outcome));
}

ChangeOutcome ChangeWork::restore(const Uuid& entryID) {
    ChangeOutcome outcome;
    const auto entry = deps_.journal->entry(entryID);
    if (!entry || !entry->isActive()) return outcome;
    if (!restoreUnlessDrifted(outcome, *entry)) ask(outcome, {entryID}, {});
    outcome.undo.done = actionOf(outcome, deps_.titles.of(*entry));
    return finished(std::move(outcome));
}

ChangeOutcome ChangeWork::restoreConfirmed(const DriftRequest& request, const std::set<Uuid>& ticked) {
    ChangeOutcome outcome;
    std::vector<Uuid> shown;
    for (const DriftedEntry& one : request.entries) shown.push_back(one.entry.id);
    const auto isAllAsShown = [&] {
        return std::all_of(request.entries.begin(), request.entries.end(), [&](const DriftedEntry& one) {
            return !ticked.contains(one.entry.id) || isAsShown(one);
        });
    };
    if (!isAllAsShown()) {
        ask(outcome, shown, request);
        return finished(std::move(outcome));
    }
    if (request.undoing) return undoWith(*request.undoing, request.entries, ticked);
    std::vector<Uuid> ids = request.others;
    for (const Uuid& id : shown)
        if (ticked.contains(id)) ids.push_back(id);
    if (!restoreTogether(outcome, deps_.journal->entries(ids), ticked, request.pendingAfterDrift,
                         isAllAsShown))
        ask(outcome, shown, request);
    return finished(std::move(outcome));
}

ChangeOutcome ChangeWork::undoAction(const SessionChange& action) {
    return undoWith(action, {}, {});
}

// asked: what drifted and was asked for already; ticked: the answer.
ChangeOutcome ChangeWork::undoWith(const SessionChange& action, const std::vector<DriftedEntry>& asked,
                                   const std::set<Uuid>& ticked) {
    ChangeOutcome outcome;
    std::map<Uuid, const DriftedEntry*> shown;
    for (const DriftedEntry& one : asked) shown.emplace(one.entry.id, &one);
    std::vector<Uuid> left, drifted;
    for (auto id = action.made.rbegin(); id != action.made.rend(); ++id)
        tryStep(outcome.failures, [&] {
            const auto entry = deps_.journal->entry(*id);
            if (!entry || !entry->isActive()) return;
            const bool isTicked = ticked.contains(*id);
            if (restoreUnlessDrifted(outcome, *entry, isTicked ? shown.at(*id) : nullptr)) return;
            // A ticked one holds something else by now.
            (shown.contains(*id) && !isTicked ? left : drifted).push_back(*id);
        });
    if (!drifted.empty()) ask(outcome, drifted, {.undoing = action});
    if (!drifted.empty() || !left.empty() || !outcome.failures.empty()) return finished(std::move(outcome));

    for (const Uuid& id : action.restored)
        tryStep(outcome.failures, [&] {
            const auto entry = deps_.journal->entry(id);
            // A tweak that was changed anew since stays as it is.
            if (!entry || deps_.journal->activeEntry(entry->tweakID)) return;
            makeAgain(outcome, *entry);
            outcome.undo.remade.emplace_back(id, outcome.made.back().id);
        });
    if (outcome.failures.empty()) outcome.undo.undone = action;
    if (outcome.failures.empty() && outcome.restored.empty() && outcome.made.empty())
        outcome.failures.push_back(nothingLeft(action));
    return finished(std::move(outcome));
}

ChangeOutcome ChangeWork::applyAgain(const std::vector<DriftedEntry>& shown) {
    ChangeOutcome outcome;
    for (const DriftedEntry& one : shown) {
        if (progress_.isEnding()) break;
        progress_.tell(outcome.made.size(), shown.size());
        tryStep(outcome.failures, [&] {
            const auto entry = deps_.journal->entry(one.entry.id);
            if (!entry || !entry->isActive()) return;
            checkCanBeMadeAgain(*entry);  // else restoring it would leave neither their value nor Brell's
            if (entry->agent) switchedAgent(deps_.toggle.folder(), *entry->agent);
            if (restoreUnlessDrifted(outcome, *entry, &one)) return makeAgain(outcome, *entry);
            outcome.failures.push_back(deps_.titles.of(*entry) +
                                       " was changed once more and is left as it is. Look at it again.");
        });
    }
    outcome.alreadyBack.clear();  // of what is made again that is no news
    outcome.undo.done = actionOf(outcome, "what was applied again", LeadsTo::theOriginals);
    return finished(std::move(outcome));
}

ChangeOutcome ChangeWork::keepTheirs(const std::vector<Uuid>& ids) {
    ChangeOutcome outcome;
    for (std::size_t i = 0; i < ids.size() && !progress_.isEnding(); ++i) {
        progress_.tell(i, ids.size());
        tryStep(outcome.failures, [&] {
            const auto entry = deps_.journal->entry(ids[i]);
            if (!entry || !entry->isActive()) return;
            outcome.agentsTouched = outcome.agentsTouched || entry->agent;
            // With the originals there is nothing of anybody else's to keep, and nothing to write either.
            if (keysHold(*entry, deps_.store) == KeysHold::original)
                deps_.engine.restore(entry->id, false);
            else
                deps_.engine.keepTheirs(entry->id);
        });
    }
    return finished(std::move(outcome));
}

ChangeOutcome ChangeWork::recover(const RecoveryCommands& shown) {
    ChangeOutcome outcome;
    outcome.recoveryFailures.emplace();
    for (const JournalEntry& entry : deps_.engine.interruptedEntries()) noteKeys(outcome, entry.tweakID);
    recoverOf(EntryKind::preference, shown, outcome);
    // What is back by now is told of, whatever becomes of the agents.
    tryStep(*outcome.recoveryFailures, [&] { recoverOf(EntryKind::launchAgent, shown, outcome); });
    return finished(std::move(outcome));
}

// Why an interrupted change is left: of an agent only what was shown to be run is run.
std::optional<std::string> ChangeWork::whyLeft(const JournalEntry& entry,
                                               const RecoveryCommands& shown) const {
    if (!entry.agent) return std::nullopt;
    const auto found = shown.find(entry.id);
    if (found != shown.end() && found->second.refusal) return found->second.refusal;
    if (found != shown.end() && found->second.commands == deps_.toggle.previewRestore(*entry.agent))
        return std::nullopt;
    return deps_.titles.of(entry) + " is put back by other commands than were shown. Look at it again.";
}

void ChangeWork::recoverOf(EntryKind kind, const RecoveryCommands& shown, ChangeOutcome& outcome) {
    std::map<Uuid, std::string> left;
    const auto isWanted = [&](const JournalEntry& entry) {
        if (entry.kind != kind) return false;
        left.erase(entry.id);  // it is asked for again under the lock
        if (auto why = whyLeft(entry, shown)) {
            left.emplace(entry.id, *std::move(why));
            return false;
        }
        outcome.agentsTouched |= entry.agent.has_value();
        return true;
    };
    const RestoreAllOutcome recovered = deps_.engine.recoverInterrupted(isWanted, goOn(progress_));
    for (JournalEntry& entry : deps_.journal->entries(recovered.restored))
        outcome.restored.push_back(std::move(entry));
    for (auto& [id, why] : left) outcome.recoveryFailures->push_back(std::move(why));
    std::vector<Uuid> drifted;
    for (const auto& [id, message] : recovered.failed) {
        outcome.recoveryFailures->push_back(message);
        const auto entry = deps_.journal->entry(id);
        if (entry && asksForDrift(*entry)) drifted.push_back(id);
    }
    if (!drifted.empty()) ask(outcome, drifted, {});
}

bool ChangeWork::leave(const TakeAway& takeAway) {
    return leaveJournal(*deps_.journal, takeAway);
}

// Makes nothing when there is nothing to do.
void ChangeWork::carryOut(ChangeOutcome& outcome, const PendingApply& wish) {
    const Tweak* tweak = deps_.catalog.tweak(wish.tweak.id);
    if (!tweak) return;
    noteKeys(outcome, tweak->id);
    if (!wish.usesSystemDefault)
        outcome.made.push_back(deps_.engine.apply(*tweak, wish.values, wish.choiceID));
    else if (!nothingIsStored(*tweak, deps_.store))
        outcome.made.push_back(deps_.engine.resetToDefault(*tweak));
}

// Of several changes of a tweak the values before the first count.
void ChangeWork::noteKeys(ChangeOutcome& outcome, const std::string& tweakID) {
    const Tweak* tweak = deps_.catalog.tweak(tweakID);
    if (!tweak || outcome.before.contains(tweakID)) return;
    if (auto now = renderedNow(*tweak, deps_.store)) outcome.before.emplace(tweakID, *std::move(now));
}

// Before it is restored: what can be told only now, or even if that fails.
void ChangeWork::noteBefore(ChangeOutcome& outcome, const JournalEntry& entry) {
    noteKeys(outcome, entry.tweakID);
    outcome.agentsTouched = outcome.agentsTouched || entry.agent;
    if (keysHold(entry, deps_.store) == KeysHold::original)
        outcome.alreadyBack.push_back(deps_.titles.of(entry));
}

// False when it drifted, and not to what was confirmed: then it is left as it is.
bool ChangeWork::restoreUnlessDrifted(ChangeOutcome& outcome, const JournalEntry& active,
                                      const DriftedEntry* confirmed) try {
    // Of an interrupted change the engine would raise an error, and put back the other keys.
    if (!confirmed && holdsOtherType(active, deps_.store)) return false;
    noteBefore(outcome, active);
    const auto check = [&] {
        if (confirmed && !isAsShown(*confirmed)) throw EngineError(Drift{active.id});
    };
    outcome.restored.push_back(deps_.engine.restore(active.id, confirmed != nullptr, check));
    return true;
} catch (const EngineError& error) {
    if (!std::holds_alternative<Drift>(error.failure())) throw;
    return false;
}

// Those that drifted only when they are confirmed; then what waited for them.
bool ChangeWork::restoreTogether(ChangeOutcome& outcome, const std::vector<JournalEntry>& entries,
                                 const std::set<Uuid>& confirmed, const std::optional<PendingApply>& then,
                                 const std::function<bool()>& mayBegin) {
    for (const JournalEntry& entry : entries) noteBefore(outcome, entry);
    bool isKept = false;
    const auto next = [&, following = goOn(progress_)](std::size_t done, std::size_t total) {
        isKept = done == 0 && !mayBegin();
        return !isKept && following(done, total);
    };
    const RestoreAllOutcome restored = deps_.engine.restoreSelected(idsOf(entries), confirmed, next);
    if (isKept) return false;
    outcome.restored = deps_.journal->entries(restored.restored);
    std::size_t closed = 0;  // by another program meanwhile
    for (const auto& [id, message] : restored.failed) {
        const auto entry = deps_.journal->entry(id);
        if (entry && entry->isActive())
            outcome.failures.push_back(message);
        else
            ++closed;
    }
    if (closed > 0 && closed == entries.size()) outcome.failures.emplace_back(nothingToRestore);
    if (!restored.skippedDrifted.empty())
        ask(outcome, restored.skippedDrifted, {.pendingAfterDrift = then});
    else if (then && outcome.failures.empty())
        tryStep(outcome.failures, [&] { carryOut(outcome, *then); });

    if (then)
        outcome.undo.done = actionOf(outcome, then->tweak.title, LeadsTo::theOriginals);
    else
        outcome.undo.done =
            actionOf(outcome, entries.size() == 1 ? deps_.titles.of(entries.front()) : "restoring");
    return true;
}

void ChangeWork::checkCanBeMadeAgain(const JournalEntry& entry) {
    if (const auto why = whyNotAgain(entry, deps_.catalog, deps_.macOSMajor()))
        throw EngineError(Refused{deps_.titles.of(entry) + ": " + *why});
}

// Makes what a restored entry had made.
void ChangeWork::makeAgain(ChangeOutcome& outcome, const JournalEntry& entry) {
    checkCanBeMadeAgain(entry);
    noteKeys(outcome, entry.tweakID);
    if (entry.agent) {
        outcome.agentsTouched = true;
        outcome.made.push_back(switchedAgain(*entry.agent));
        return;
    }
    const Tweak& tweak = *tweakOf(entry, deps_.catalog);
    outcome.made.push_back(entry.direction == EntryDirection::on
                               ? deps_.engine.apply(tweak, writtenValues(entry, tweak), entry.choiceID)
                               : deps_.engine.resetToDefault(tweak));
}

// The question says what the keys hold now.
void ChangeWork::ask(ChangeOutcome& outcome, const std::vector<Uuid>& drifted, DriftRequest request) {
    tryStep(outcome.failures, [&] {
        request.id = Uuid::random();
        request.entries.clear();
        for (const JournalEntry& entry : deps_.journal->entries(drifted)) {
            if (!entry.isActive()) continue;  // another program put it back meanwhile
            DriftedEntry now = driftedEntry(entry, readKeys(entry, deps_.store), deps_.catalog);
            // One that holds what Brell wrote again is as any other.
            if (now.lines.empty())
                request.others.push_back(entry.id);
            else
                request.entries.push_back(std::move(now));
        }
        if (!request.entries.empty()) outcome.question = std::move(request);
    });
}

// Overwriting what nobody has seen would be overwriting unasked.
bool ChangeWork::isAsShown(const DriftedEntry& shown) {
    const auto entry = deps_.journal->entry(shown.entry.id);
    return !entry || !asksForDrift(*entry) ||
           driftedEntry(*entry, readKeys(*entry, deps_.store), deps_.catalog).lines == shown.lines;
}

bool ChangeWork::asksForDrift(const JournalEntry& entry) {
    return entry.isActive() && entry.kind == EntryKind::preference && needsConsent(entry, deps_.store);
}

// Reads what a change came to, while nothing else changes.
ChangeOutcome ChangeWork::finished(ChangeOutcome outcome) {
    const std::vector<JournalEntry> undone = undoneBy(outcome);
    outcome.proof = undoProof(undone, readKeys(undone, deps_.store), outcome.alreadyBack, deps_.titles);
    std::set<std::string_view> changed;
    for (const auto* entries : {&outcome.restored, &outcome.made})
        for (const JournalEntry& entry : *entries) changed.insert(entry.tweakID);
    std::erase_if(outcome.before, [&](const auto& one) { return !changed.contains(one.first); });
    for (const auto& [tweakID, before] : outcome.before)
        if (auto now = renderedNow(*deps_.catalog.tweak(tweakID), deps_.store))
            outcome.touched.emplace(tweakID, *std::move(now));
    return outcome;
}

}  // namespace brell
