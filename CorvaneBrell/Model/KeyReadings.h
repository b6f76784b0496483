// The values that an entry's keys hold now, beside those that it found and those that it wrote.
#pragma once

#include <optional>
#include <vector>

#include "BrellCore/Journal/JournalEntry.h"

namespace brell {

class PreferenceReader;

struct KeyReading {
    JournaledWrite write;
    std::optional<StoredValue> now;  // nothing: the key can't be read

    bool isAsBefore() const { return now == write.original; }
    bool isAsWritten() const { return now == write.written; }
    bool operator==(const KeyReading&) const = default;
};
using KeyReadings = std::vector<KeyReading>;  // one for each key of an entry, or of several

// The exact reading; nothing when the key can't be read.
std::optional<StoredValue> readIfPossible(const PrefKey& key, PreferenceReader& preferences);

// Raises nothing. A LaunchAgent's entry has no keys.
KeyReadings readKeys(const JournalEntry& entry, PreferenceReader& preferences);
KeyReadings readKeys(const std::vector<JournalEntry>& entries, PreferenceReader& preferences);

}  // namespace brell
