// Entries that came from another Mac or another account: a home that was copied or migrated brings its
// journal along.
#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

#include "BrellCore/Journal/JournalEntry.h"

namespace brell {

// An entry that was not made here, and how that shows.
struct ForeignEntry {
    Uuid entry;
    bool agentLiesElsewhere;  // its agent's file, in no folder of this home
    bool macOSIsNewer;        // than the one that runs here
    bool operator==(const ForeignEntry&) const = default;
};

// In the order of the entries. home is absolute and without links, as the paths of agents are. A version that
// is none counts as no newer one.
std::vector<ForeignEntry> foreignEntries(const std::vector<JournalEntry>& entries,
                                         const std::filesystem::path& home, std::string_view macOSVersion);

}  // namespace brell
