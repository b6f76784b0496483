// The journal as its history tells it: every history line holds its whole entry.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "BrellCore/Journal/History.h"

namespace brell {

struct RebuildPlan {
    std::vector<JournalEntry> entries;  // as their last line has them, in the order of their first
    // Of these, the ones that were still active in their last line although a later active one of the same
    // tweak followed: their end is missing from the history. The entries have them as restored, with a
    // failure text that says so.
    std::vector<Uuid> overtaken;
    std::optional<TimeStamp> from, to;  // the earliest and the latest line; nothing without one
    std::size_t torn = 0;               // as in HistoryReading
    std::size_t foreign = 0;
    std::vector<std::string> unread;

    std::vector<JournalEntry> active() const;
    bool operator==(const RebuildPlan&) const = default;
};

RebuildPlan planRebuild(HistoryReading history);

}  // namespace brell
