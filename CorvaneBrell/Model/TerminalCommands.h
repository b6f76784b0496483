// Changes as commands to paste into Terminal. Nothing that the values hold can become a command.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Journal/JournalEntry.h"

namespace brell {

// Every text ends with a line that says what to relaunch or reopen, where that is needed. It is an echo: the
// shell of a Mac takes no comments at its prompt.

// Sets the tweak's own targets, or these values: one for each write.
std::string commandsMaking(const Tweak& tweak,
                           const std::optional<std::vector<PrefValue>>& values = std::nullopt);

// Repeats what these changes did, in the order given. Entries that are no longer active are left out.
std::string commandsMaking(const std::vector<JournalEntry>& entries, const TweakCatalog& catalog);

// Puts back what the entry saved.
std::string commandsUndoing(const JournalEntry& entry, const TweakCatalog& catalog);

}  // namespace brell
