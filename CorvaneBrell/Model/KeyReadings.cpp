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

}  // namespace brell
