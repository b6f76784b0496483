// Storing a key's value and proving it by reading it back.
#pragma once

#include <optional>
#include <vector>

#include "BrellCore/Engine/EngineError.h"
#include "BrellCore/Journal/JournalEntry.h"

namespace brell {

class PreferenceStore;

// Nothing while the key holds its original; else why the change must not overwrite it.
std::optional<EngineFailure> whyNotOverwritten(const JournaledWrite& write, PreferenceStore& store);

// Makes the key hold what the change writes. Gives what went wrong; the key may then hold anything.
std::optional<EngineFailure> writeVerified(const JournaledWrite& write, PreferenceStore& store);

// The fate of a stored value of a kind that Brell never writes.
enum class OtherType { keep, replace };

// Makes the key hold its original again. Raises StoreError when it does not come back.
void putBack(const JournaledWrite& write, OtherType otherType, PreferenceStore& store);
// Every key, also behind one that does not come back. Raises what the first of these raised.
void putBack(const std::vector<JournaledWrite>& writes, OtherType otherType, PreferenceStore& store);

}  // namespace brell
