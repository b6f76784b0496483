#include "BrellCore/Engine/KeysHold.h"

#include <algorithm>
#include <vector>

#include "BrellCore/Engine/Drift.h"
#include "BrellCore/Preferences/PreferenceStore.h"

namespace brell {

namespace {

KeysHold keyHolds(const JournaledWrite& write, PreferenceReader& preferences) try {
    const StoredValue now = preferences.exactValue(write.key);
    if (isSomebodyElses(now, write)) return KeysHold::somethingElse;
    return now == write.written ? KeysHold::written : KeysHold::original;
} catch (const StoreError& error) {
    const bool isOtherType = std::holds_alternative<UnsupportedType>(error.failure());
    return isOtherType ? KeysHold::somethingElse : KeysHold::unreadable;
}

}  // namespace

std::optional<KeysHold> keysHold(const JournalEntry& entry, PreferenceReader& preferences) {
    if (entry.kind == EntryKind::launchAgent) return std::nullopt;
    std::vector<KeysHold> keys;
    for (const JournaledWrite& write : entry.writes) keys.push_back(keyHolds(write, preferences));
    const auto some = [&](KeysHold one) { return std::find(keys.begin(), keys.end(), one) != keys.end(); };
    for (const KeysHold one : {KeysHold::unreadable, KeysHold::somethingElse})
        if (some(one)) return one;
    if (!some(KeysHold::original)) return KeysHold::written;
    return some(KeysHold::written) ? KeysHold::both : KeysHold::original;
}

}  // namespace brell
