#include "CorvaneBrell/Model/KeyReadings.h"

#include "BrellCore/Preferences/PreferenceStore.h"

namespace brell {

std::optional<StoredValue> readIfPossible(const PrefKey& key, PreferenceReader& preferences) try {
    return preferences.exactValue(key);
} catch (const StoreError&) {
    return std::nullopt;
}

KeyReadings readKeys(const JournalEntry& entry, PreferenceReader& preferences) {
    KeyReadings keys;
    for (const JournaledWrite& write : entry.writes)
        keys.push_back({write, readIfPossible(write.key, preferences)});
    return keys;
}

KeyReadings readKeys(const std::vector<JournalEntry>& entries, PreferenceReader& preferences) {
    KeyReadings keys;
    for (const JournalEntry& entry : entries)
        for (KeyReading& key : readKeys(entry, preferences)) keys.push_back(std::move(key));
    return keys;
}

}  // namespace brell
