// Whether what a change touched is as it was before, read back key by key.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "BrellCore/Journal/JournalEntry.h"

namespace brell {

class PreferenceStore;

struct KeyProof {
    PrefKey key;
    StoredValue original;
    std::optional<StoredValue> now;  // nothing: the key can't be read

    bool isAsBefore() const { return now == original; }
    bool operator==(const KeyProof&) const = default;
};

// The exact reading; nothing when the key can't be read.
std::optional<StoredValue> readIfPossible(const PrefKey& key, PreferenceStore& store);

using UndoProof = std::vector<KeyProof>;  // one for each key of the entry

// For entries that changed preferences; a LaunchAgent's has no keys. Raises nothing.
UndoProof proveUndo(const JournalEntry& entry, PreferenceStore& store);

// "3 of 3 keys are exactly as before." Otherwise every key that is not is named.
std::string sentence(const UndoProof& proof);

// Every key reads as its original already, whoever put it back. Never for an entry without keys.
bool isAlreadyBack(const JournalEntry& entry, PreferenceStore& store);

// Says so when the change was made on another version of macOS than the running one.
std::optional<std::string> madeOnAnotherMacOS(const JournalEntry& entry, std::string_view runningVersion);

}  // namespace brell
