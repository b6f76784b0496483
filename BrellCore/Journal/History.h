// The append-only record of what happened to every entry: one JSON-lines file a day.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
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

// The lines of a history, oldest file first and in each file's order, and what could not be read of it.
struct HistoryReading {
    std::vector<HistoryLine> lines;
    std::size_t torn = 0;     // lines that are no whole JSON: cut short, or damaged
    std::size_t foreign = 0;  // whole ones that are no history line, or one that only a newer Brell knows
    std::vector<std::string> unread;  // for each file that could not be read a sentence
    bool operator==(const HistoryReading&) const = default;
};

// Every line not earlier than the cut-off that can be read. A missing folder gives nothing.
std::vector<HistoryLine> readHistory(const std::filesystem::path& directory, std::optional<TimeStamp> cutOff);

// Called before each file, with the lines since it last took any away, and with how many bytes of all were
// read; false ends the reading there.
using BetweenFiles =
    std::function<bool(std::vector<HistoryLine>& lines, std::uintmax_t done, std::uintmax_t total)>;

// The lines that tell how each entry ended: of lines of one day about one entry that follow each other the
// last.
HistoryReading readLastOfHistory(const std::filesystem::path& directory, const BetweenFiles& goOn);

}  // namespace brell
