#include "BrellCore/Journal/JournalEntry.h"

#include <algorithm>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Support/Text.h"

namespace brell {

std::string entryTitle(const JournalEntry& entry, const TweakCatalog& catalog) {
    return excerpt(entry.agent ? entry.agent->label : catalog.titleOf(entry.tweakID));
}

const JournalEntry* activeEntry(const std::vector<JournalEntry>& entries, std::string_view tweakID) {
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const JournalEntry& entry) {
        return entry.isActive() && entry.tweakID == tweakID;
    });
    return found == entries.end() ? nullptr : &*found;
}

}  // namespace brell
