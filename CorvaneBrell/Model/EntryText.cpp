#include "CorvaneBrell/Model/EntryText.h"

namespace brell {

std::string entryTitle(const JournalEntry& entry, const TweakCatalog& catalog) {
    if (entry.agent) return entry.agent->label;
    const Tweak* tweak = catalog.tweak(entry.tweakID);
    return tweak ? tweak->title : entry.tweakID;
}

std::vector<std::string> putBackLines(const JournalEntry& entry) {
    std::vector<std::string> lines;
    for (const JournaledWrite& write : entry.writes)
        lines.push_back(write.key.rendered() + ": back to " + write.original.rendered());
    return lines;
}

}  // namespace brell
