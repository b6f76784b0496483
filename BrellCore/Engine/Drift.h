// The question whether a change's values are still there or were changed by others.
#pragma once

#include <optional>
#include <string>

#include "BrellCore/Journal/JournalEntry.h"

namespace brell {

class PreferenceReader;

// Every key holds what the change wrote. A key that can't be read counts as one that does not.
bool isInForce(const JournalEntry& entry, PreferenceReader& preferences);

// The key holds neither what the change wrote nor its original. A key that holds its original is nobody
// else's: an undo that could not be finished, or not be recorded, leaves such keys behind.
bool isSomebodyElses(const StoredValue& now, const JournaledWrite& write);

// Some key of the entry holds such a value, or one of a kind that Brell never writes. Raises StoreError when
// a key can't be read.
bool holdsSomebodyElses(const JournalEntry& entry, PreferenceReader& preferences);

// The same for a look at it: a key that can't be read counts as changed.
bool hasDrifted(const JournalEntry& entry, PreferenceReader& preferences);

// Some key of the entry holds a value of a kind that Brell never writes.
bool holdsOtherType(const JournalEntry& entry, PreferenceReader& preferences);

// Why some key of the entry can't be put back, whatever it holds: a sentence. It is in a domain that Brell
// may not change, as one from a Brell with other tweaks may be.
std::optional<std::string> whyNeverPutBack(const JournalEntry& entry, PreferenceReader& preferences);

// Undoing the entry, which is active, would overwrite what others stored, and needs the user's word. Of an
// interrupted change any other value may be half of it.
bool needsConsent(const JournalEntry& entry, PreferenceReader& preferences);

}  // namespace brell
