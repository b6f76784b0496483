// The order in which changes are undone.
#pragma once

#include <algorithm>
#include <vector>

#include "BrellCore/Journal/JournalEntry.h"

namespace brell {

// By the time of the change; entries of equal times keep their order. The same for the program and for the
// restore script, so that both undo alike.
inline std::vector<JournalEntry> newestFirst(std::vector<JournalEntry> entries) {
    std::stable_sort(entries.begin(), entries.end(), [](const JournalEntry& one, const JournalEntry& other) {
        return one.appliedAt > other.appliedAt;
    });
    return entries;
}

}  // namespace brell
