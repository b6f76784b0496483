// Changes as commands to paste into Terminal. Nothing that the values hold can become a command.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Journal/JournalEntry.h"

namespace brell {

// For zsh and bash. Every text ends with lines that say what is left out, and what to relaunch or reopen,
// where there is such a thing. They are echoes: the shell of a Mac takes no comments at its prompt.

// Sets the tweak's own targets, or these values: one for each write.
std::string commandsMaking(const Tweak& tweak,
                           const std::optional<std::vector<PrefValue>>& values = std::nullopt);

// Repeats what these changes did, in the order given. Entries that are no longer active are left out, and
// told of are those that Brell itself would refuse to make or that a tool could take for flags.
std::string commandsMaking(const std::vector<JournalEntry>& entries, const TweakCatalog& catalog);

}  // namespace brell
