// The journal as its history tells it: every history line holds its whole entry.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "BrellCore/Journal/History.h"

namespace brell {

struct RebuildPlan {
    std::vector<JournalEntry> entries;  // as their end or else their last line has them, by their first
    // Of these, the ones that were still active in their last line although a later active one of the same
    // tweak followed: their end is missing from the history, or a journal that was lost held them. The
    // entries have them as restored, with a failure text that says so.
    std::vector<Uuid> overtaken;
    std::optional<TimeStamp> from, to;  // on the days of the first and of the last line; nothing without one
    std::size_t torn = 0;               // as in HistoryReading
    std::size_t foreign = 0;
    std::vector<std::string> unread;
    // Of the overtaken, those that were in force for all that the later one shows: it puts back now what was
    // before them, or did so, and counts as restored itself.
    std::size_t handedOn = 0;
    std::size_t known = 0;  // of the entries, those that the journal holds

    std::vector<JournalEntry> active() const;
    bool operator==(const RebuildPlan&) const = default;
};

RebuildPlan planRebuild(HistoryReading history);

// Of several active changes of one tweak, as a journal can hold that was lost and begun anew, ends all but
// the last. Gives the entries that this changes, which belong together.
std::vector<JournalEntry> endOvertaken(const std::vector<JournalEntry>& entries);

// The same from a history that comes in pieces: most of its lines are not kept.
class RebuildPlanner {
public:
    // What the journal holds, if it can be read. Before any line, and at most once.
    void know(std::vector<JournalEntry> entries);
    void take(std::vector<HistoryLine>& lines);  // leaves it empty
    RebuildPlan finish(HistoryReading rest) &&;

private:
    struct HashOfId {
        std::size_t operator()(const Uuid& id) const noexcept;
    };
    RebuildPlan plan_;
    std::unordered_map<Uuid, std::size_t, HashOfId> places_;  // in the plan's entries
};

}  // namespace brell
