#include "BrellCore/Journal/JournalEntry.h"

#include <algorithm>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

bool makes(const JournalEntry& entry, const Write& write) {
    return std::any_of(entry.writes.begin(), entry.writes.end(), [&](const JournaledWrite& made) {
        const auto& value = made.written.value;
        return made.key == write.key && (!value || value->typeName() == write.target.typeName());
    });
}

}  // namespace

std::string entryTitle(const JournalEntry& entry, const TweakCatalog& catalog) {
    return excerpt(entry.agent ? entry.agent->label : catalog.titleOf(entry.tweakID));
}

const Tweak* tweakOf(const JournalEntry& entry, const TweakCatalog& catalog) {
    const Tweak* tweak = catalog.tweak(entry.tweakID);
    if (!tweak || entry.writes.size() != tweak->writes.size()) return nullptr;
    const bool isSame = std::all_of(tweak->writes.begin(), tweak->writes.end(),
                                    [&](const Write& write) { return makes(entry, write); });
    return isSame ? tweak : nullptr;
}

const JournalEntry* activeEntry(const std::vector<JournalEntry>& entries, std::string_view tweakID) {
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const JournalEntry& entry) {
        return entry.isActive() && entry.tweakID == tweakID;
    });
    return found == entries.end() ? nullptr : &*found;
}

}  // namespace brell
