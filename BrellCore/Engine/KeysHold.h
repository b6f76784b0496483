// The values that the keys of a change hold now, seen from the change.
#pragma once

#include <optional>

#include "BrellCore/Journal/JournalEntry.h"

namespace brell {

class PreferenceReader;

enum class KeysHold {
    written,        // every key what the change wrote
    original,       // every key what it held before
    both,           // some the one, some the other: a change or an undo that was interrupted
    somethingElse,  // some key a value that is neither
    unreadable,     // some key can't be read
};

// Of a change of preferences; nothing of a LaunchAgent's, which has no keys. A value that is both, because
// the change wrote what was there, counts as written.
std::optional<KeysHold> keysHold(const JournalEntry& entry, PreferenceReader& preferences);

}  // namespace brell
