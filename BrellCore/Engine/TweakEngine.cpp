#include "BrellCore/Engine/TweakEngine.h"

#include <fmt/format.h>

#include "BrellCore/Engine/VerifiedWrite.h"
#include "BrellCore/Journal/JournalPlace.h"
#include "BrellCore/Preferences/NeverTouch.h"
#include "BrellCore/Preferences/PrefValueJson.h"
#include "BrellCore/Preferences/PreferenceStore.h"
#include "BrellCore/Support/Leftovers.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

EngineError refused(std::string text) {
    return EngineError(Refused{std::move(text)});
}

void checkValues(const Tweak& tweak, const std::vector<PrefValue>& values) {
    if (values.size() != tweak.writes.size())
        throw refused(
            fmt::format("{}: {} values for {} keys.", tweak.id, values.size(), tweak.writes.size()));
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Write& write = tweak.writes[i];
        if (values[i].typeName() != write.target.typeName())
            throw refused(fmt::format("{}: {} takes a {}, not a {}.", tweak.id, write.key.name,
                                      write.target.typeName(), values[i].typeName()));
    }
}

// An original that can't be saved could not be put back.
void checkCanBeSaved(const JournaledWrite& write) try {
    JsonWriter json(JsonWriter::Layout::compact);
    writeJson(json, write.original);
    writeJson(json, write.written);
} catch (const JsonWriteError& error) {
    throw refused(write.key.rendered() + " can't be changed: " + error.what() + ".");
}

// Says why a tweak whose state has no entry of ours to restore is not turned off.
struct TurnOffRefusal {
    const Tweak& tweak;
    std::string operator()(const PerHost&) const {
        return tweak.title + " is set per host; Brell does not change it.";
    }
    std::string operator()(const Managed&) const { return tweak.title + " is managed by a profile."; }
    std::string operator()(const Unsupported& state) const { return state.message; }
    std::string operator()(const auto&) const { return tweak.title + " is not on."; }
};

}  // namespace

AgentRestoring::~AgentRestoring() = default;

TweakEngine::TweakEngine(PreferenceStore& store, Journal& journal, const TweakCatalog& catalog,
                         EngineSettings settings)
    : store_(store),
      journal_(journal),
      catalog_(catalog),
      settings_(std::move(settings)),
      script_(journal, settings_.restoreScriptURL, settings_.clock) {}

JournalEntry TweakEngine::apply(const Tweak& tweak, std::optional<std::vector<PrefValue>> values,
                                std::optional<std::string> choiceID) {
    const std::vector<PrefValue> chosen = values ? std::move(*values) : tweak.targets();
    checkValues(tweak, chosen);
    return change(tweak, EntryDirection::on, {chosen.begin(), chosen.end()}, std::move(choiceID));
}

JournalEntry TweakEngine::resetToDefault(const Tweak& tweak) {
    return change(tweak, EntryDirection::resetToDefault, Values(tweak.writes.size()), std::nullopt);
}

JournalEntry TweakEngine::turnOff(const Tweak& tweak, bool overridingDrift) {
    const std::lock_guard lock(mutex_);
    return asEngineErrors([&] {
        const Values removed(tweak.writes.size());
        const auto entryToRestore = [&]() -> std::optional<Uuid> {
            const TweakState state = status(tweak).state;
            if (const auto entry = activeEntryOf(state)) return entry;
            if (!std::holds_alternative<SetBeforeBrell>(state))
                throw refused(std::visit(TurnOffRefusal{tweak}, state));
            return std::nullopt;  // set before us: the keys are removed
        };
        // Before the lock's file is made, so that a refusal leaves nothing behind.
        if (!entryToRestore()) checkChange(tweak, removed);
        const Journal::Exclusive held = exclusiveJournal();
        // Again: what was on may have been put back by another program, whose value is not to be lost.
        if (const auto entry = entryToRestore()) return restoreOne(*entry, overridingDrift, held);
        return changeLocked(tweak, EntryDirection::resetToDefault, removed, std::nullopt, held);
    });
}

AgentChange TweakEngine::beginAgentChange(const std::string& label,
                                          const std::function<AgentCapture()>& capture) {
    return asEngineErrors([&] {
        Journal::Exclusive held = exclusiveJournal();
        if (journal_.activeEntry(agentTweakID(label)))
            throw refused(label + " already has an active change; restore it from the Journal first.");
        AgentCapture captured = capture();
        JournalEntry entry = newEntry(agentTweakID(label), EntryKind::launchAgent, EntryDirection::on);
        entry.agent = std::move(captured);
        journal_.upsert(entry, held);
        script_.keep();
        return AgentChange{std::move(entry), std::move(held)};
    });
}

JournalEntry TweakEngine::finishAgentChange(AgentChange change, EntryStatus status,
                                            std::optional<std::string> failure) {
    return asEngineErrors([&] {
        change.entry.status = status;
        // A tool may print any bytes, which must not keep the outcome out of the journal.
        if (failure) change.entry.failure = repairedUtf8(*failure);
        if (status == EntryStatus::applied) {
            saveApplied(change.entry, change.held);
        } else {
            journal_.upsert(change.entry, change.held);
            script_.keep();
        }
        return change.entry;
    });
}

// Without the advisory lock, which a change under way on this very thread may hold: once more, until nothing
// was saved by others while it was written.
void TweakEngine::rewriteRestoreScript() noexcept {
    while (script_.keep()) {
    }
}

// Whatever becomes of the operation, the script says at once where the changes that are left lead.
Journal::Exclusive TweakEngine::exclusiveJournal() {
    Journal::Exclusive held = journal_.exclusive();
    if (held.endedOvertaken()) script_.keep();
    return held;
}

JournalEntry TweakEngine::change(const Tweak& tweak, EntryDirection direction, const Values& values,
                                 std::optional<std::string> choiceID) {
    const std::lock_guard lock(mutex_);
    return asEngineErrors([&] {
        checkChange(tweak, values);  // before the lock's file is made, so that a refusal leaves nothing
        return changeLocked(tweak, direction, values, std::move(choiceID), exclusiveJournal());
    });
}

JournalEntry TweakEngine::changeLocked(const Tweak& tweak, EntryDirection direction, const Values& values,
                                       std::optional<std::string> choiceID, const Journal::Exclusive& held) {
    JournalEntry entry = newEntry(tweak.id, EntryKind::preference, direction);
    entry.writes = captureOriginals(tweak, values);  // again: only now can nobody else change the answer
    entry.choiceID = std::move(choiceID);
    journal_.upsert(entry, held);
    // Before the first write: from here on the script undoes the change, wherever the process ends.
    script_.keep();
    if (afterCaptureHook_) afterCaptureHook_(entry);

    for (std::size_t i = 0; i < entry.writes.size(); ++i) {
        // The saving took its time, and others know nothing of the lock.
        if (const auto why = whyNotOverwritten(entry.writes[i], store_)) throw rollBack(entry, i, *why, held);
        if (const auto failure = writeVerified(entry.writes[i], store_))
            throw rollBack(entry, i + 1, *failure, held);
    }
    entry.status = EntryStatus::applied;
    saveApplied(entry, held);
    return entry;
}

// Of a change that is made: when it can't be saved, the journal still says that it is under way. The script
// says the same for both; it is written only when that failed before.
void TweakEngine::saveApplied(const JournalEntry& entry, const Journal::Exclusive& held) try {
    journal_.upsert(entry, held);
    script_.keep();
    tidyUp(held);
} catch (const JournalError& error) {
    script_.keep();
    throw EngineError(error.failure(), entryTitle(entry, catalog_) +
                                           " was changed all the same; it is listed as interrupted.");
}

// Once a day, after a success: nobody else writes these files while the lock is held.
void TweakEngine::tidyUp(const Journal::Exclusive&) noexcept try {
    const std::int64_t today =
        std::chrono::floor<std::chrono::days>(settings_.clock()).time_since_epoch().count();
    if (tidiedOn_.exchange(today) == today) return;
    std::vector<std::filesystem::path> files{withoutLink(journal_.fileURL())};
    if (settings_.restoreScriptURL) files.push_back(*settings_.restoreScriptURL);
    removeLeftovers(files);
    store_.removeLeftovers();
} catch (const std::exception&) {
    // Tomorrow, then.
}

JournalEntry TweakEngine::newEntry(std::string tweakID, EntryKind kind, EntryDirection direction) const {
    JournalEntry entry{};
    entry.id = Uuid::random();
    entry.tweakID = std::move(tweakID);
    entry.kind = kind;
    entry.direction = direction;
    entry.status = EntryStatus::capturing;
    entry.appliedAt = settings_.clock();
    entry.macOSVersion = settings_.macOSVersion;
    return entry;
}

// Everything that would be refused under the lock, and what could not be saved. The journal itself refuses
// what became so since.
void TweakEngine::checkChange(const Tweak& tweak, const Values& values) {
    for (const JournaledWrite& write : captureOriginals(tweak, values)) checkCanBeSaved(write);
}

// Refuses what may not be changed; otherwise what each key holds now and what it is to hold.
std::vector<JournaledWrite> TweakEngine::captureOriginals(const Tweak& tweak, const Values& values) {
    if (!tweak.isAvailable(settings_.macOSMajor))
        throw refused(fmt::format("{} is not offered on macOS {}.", tweak.title, settings_.macOSMajor));
    if (const auto entry = journal_.activeEntry(tweak.id))
        throw refused(fmt::format("{} already has an active change ({}); turn it off first.", tweak.title,
                                  rawValue(entry->status)));
    std::vector<JournaledWrite> writes;
    for (std::size_t i = 0; i < tweak.writes.size(); ++i) {
        const PrefKey& key = tweak.writes[i].key;
        if (NeverTouch::isForbiddenDomain(key.domain)) throw refused(key.domain + " is never changed.");
        if (store_.hasByHostValue(key))
            throw refused(key.rendered() + " is set per host; Brell does not change it here.");
        if (store_.isForced(key))
            throw refused(key.rendered() + " is managed by a profile; a change would have no effect.");
        writes.push_back({key, store_.exactValue(key), values[i]});
    }
    return writes;
}

// Puts the first so many writes back, newest first, and records how that went. Gives the error to raise: the
// reason for rolling back, and what did not come back.
EngineError TweakEngine::rollBack(JournalEntry& entry, std::size_t written, const EngineFailure& reason,
                                  const Journal::Exclusive& held) {
    entry.status = EntryStatus::failed;
    std::vector<std::string> stuck;
    for (std::size_t i = written; i-- > 0;) {
        try {
            putBack(entry.writes[i], OtherType::keep, store_);
        } catch (const StoreError& error) {
            entry.status = EntryStatus::capturing;  // still active: recovery tries again
            stuck.push_back(error.what());
        }
    }
    const EngineError error = stuck.empty() ? EngineError(reason) : EngineError(reason, join(stuck, " "));
    entry.failure = repairedUtf8(error.what());  // else a path in it could keep it out of the journal
    try {
        journal_.upsert(entry, held);
    } catch (const JournalError&) {
        // The entry stays on disk as it was saved before the change: active, with every original.
    }
    script_.keep();
    return error;
}

}  // namespace brell
