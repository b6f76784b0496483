// The append-only record of what happened to every entry: one JSON-lines file a day.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "BrellCore/Journal/JournalEntry.h"

namespace brell {

struct HistoryLine {
    TimeStamp at;
    EntryStatus event;   // the status the entry had just been saved with
    JournalEntry entry;  // as saved

    std::string id() const;  // differs for the same entry and event at different times
    bool operator==(const HistoryLine&) const = default;
};

// Adds one line to the file of that moment's local day, "yyyy-MM-dd.jsonl", making the folder when it is
// missing. A record for the user, not what undoes changes: nothing is synchronised, and false says that the
// line could not be written.
bool appendHistoryLine(const std::filesystem::path& directory, TimeStamp at, const JournalEntry& entry);

// Every line not earlier than the cut-off, oldest file first and in each file's order. Lines and files that
// can't be read are passed over; a missing folder gives nothing.
std::vector<HistoryLine> readHistory(const std::filesystem::path& directory, std::optional<TimeStamp> cutOff);

}  // namespace brell
