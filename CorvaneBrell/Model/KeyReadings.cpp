#include "CorvaneBrell/Model/KeyReadings.h"

#include <algorithm>
#include <functional>

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

bool isAlreadyBack(const JournalEntry& entry, PreferenceReader& preferences) {
    const KeyReadings keys = readKeys(entry, preferences);
    return !keys.empty() && std::all_of(keys.begin(), keys.end(), std::mem_fn(&KeyReading::isAsBefore));
}

}  // namespace brell
