// A change of the journal in words: what it is called, and what undoing it puts back.
#pragma once

#include <string>
#include <vector>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Journal/JournalEntry.h"

namespace brell {

// The tweak's title or the agent's label; the id of a tweak that the catalog does not have any more.
std::string entryTitle(const JournalEntry& entry, const TweakCatalog& catalog);

// One for each key: "com.apple.dock autohide: back to absent". An agent's entry has none.
std::vector<std::string> putBackLines(const JournalEntry& entry);

}  // namespace brell
