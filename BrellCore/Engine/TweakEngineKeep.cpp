// Closing a change that others changed since.

#include "BrellCore/Engine/Drift.h"
#include "BrellCore/Engine/TweakEngine.h"
#include "BrellCore/Preferences/PreferenceStore.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

std::string valueNow(const PrefKey& key, PreferenceReader& preferences) try {
    return excerpt(preferences.exactValue(key).rendered());
} catch (const StoreError& error) {
    const auto* other = std::get_if<UnsupportedType>(&error.failure());
    if (!other) throw;
    return "a value of the type " + other->typeWord;
}

std::string valuesNow(const JournalEntry& entry, PreferenceReader& preferences) {
    std::vector<std::string> values;
    for (const JournaledWrite& write : entry.writes)
        values.push_back(write.key.rendered() + " is " + valueNow(write.key, preferences));
    return join(values, ", ");
}

}  // namespace

JournalEntry TweakEngine::keepTheirs(const Uuid& entryID) {
    const std::lock_guard lock(mutex_);
    return asEngineErrors([&] {
        whatIsKept(activeEntry(entryID));  // before the lock's file is made, so that a refusal leaves nothing
        const Journal::Exclusive held = exclusiveJournal();
        JournalEntry entry = activeEntry(entryID);
        entry.failure = repairedUtf8(whatIsKept(entry));
        entry.status = EntryStatus::restored;
        entry.restoredAt = settings_.clock();
        journal_.upsert(entry, held);
        script_.keep();
        return entry;
    });
}

// The failure text of an entry that is closed like this. Refuses one that can be undone as it is.
std::string TweakEngine::whatIsKept(const JournalEntry& entry) {
    const auto refuse = [&](const char* why) {
        return EngineError(Refused{entryTitle(entry, catalog_) + why});
    };
    if (entry.kind == EntryKind::launchAgent) {
        if (!entry.agent) return "Nothing was switched back, because the journal does not say how it was.";
        if (!agentRestorer_) throw EngineError(NoAgentRestorer{});
        if (const auto why = agentRestorer_->whyNotRestored(*entry.agent))
            return "Nothing was switched back. " + *why;
    }
    const auto preferences = store_.reader();
    if (const auto why = whyNeverPutBack(entry, *preferences)) return "Nothing was put back. " + *why;
    if (entry.status != EntryStatus::applied && !holdsOtherType(entry, *preferences))
        throw refuse(" was interrupted; restore it first.");
    const char* const unchanged = " was not changed outside Brell; there is nothing else to keep.";
    if (entry.kind == EntryKind::preference) {
        std::string values = valuesNow(entry, *preferences);
        if (!holdsSomebodyElses(entry, *preferences)) throw refuse(unchanged);
        return "Nothing was put back, because another value was kept: " + values + ".";
    }
    const auto state = agentRestorer_->otherState(*entry.agent);
    if (!state) throw refuse(unchanged);
    return "Nothing was switched back, because another state was kept: " + *state + ".";
}

}  // namespace brell
