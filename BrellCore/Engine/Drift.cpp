#include "BrellCore/Engine/Drift.h"

#include <algorithm>

#include "BrellCore/Preferences/PreferenceStore.h"

namespace brell {

bool isInForce(const JournalEntry& entry, PreferenceReader& preferences) try {
    return std::all_of(entry.writes.begin(), entry.writes.end(), [&](const JournaledWrite& write) {
        return preferences.exactValue(write.key) == write.written;
    });
} catch (const StoreError&) {
    return false;
}

bool isSomebodyElses(const StoredValue& now, const JournaledWrite& write) {
    return now != write.written && now != write.original;
}

bool holdsSomebodyElses(const JournalEntry& entry, PreferenceReader& preferences) try {
    return std::any_of(entry.writes.begin(), entry.writes.end(), [&](const JournaledWrite& write) {
        return isSomebodyElses(preferences.exactValue(write.key), write);
    });
} catch (const StoreError& error) {
    if (std::holds_alternative<UnsupportedType>(error.failure())) return true;
    throw;
}

bool hasDrifted(const JournalEntry& entry, PreferenceReader& preferences) try {
    return holdsSomebodyElses(entry, preferences);
} catch (const StoreError&) {
    return true;
}

bool holdsOtherType(const JournalEntry& entry, PreferenceReader& preferences) {
    return std::any_of(entry.writes.begin(), entry.writes.end(), [&](const JournaledWrite& write) {
        try {
            preferences.exactValue(write.key);
            return false;
        } catch (const StoreError& error) {
            return std::holds_alternative<UnsupportedType>(error.failure());
        }
    });
}

std::optional<std::string> whyNeverPutBack(const JournalEntry& entry, PreferenceReader& preferences) {
    for (const JournaledWrite& write : entry.writes) try {
            preferences.exactValue(write.key);
        } catch (const StoreError& error) {
            if (std::holds_alternative<DomainNotAllowed>(error.failure())) return error.what();
        }
    return std::nullopt;
}

bool needsConsent(const JournalEntry& entry, PreferenceReader& preferences) {
    return entry.status == EntryStatus::applied ? hasDrifted(entry, preferences)
                                                : holdsOtherType(entry, preferences);
}

}  // namespace brell
