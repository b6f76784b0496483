// The lines of a history file as text.
#pragma once

#include <optional>
#include <string>

#include "BrellCore/Journal/History.h"

namespace brell {

// With its line feed. Raises JsonWriteError for a value that JSON can't carry.
std::string historyLineText(TimeStamp at, const JournalEntry& entry);

// Adds every line not earlier than the cut-off, and counts those that can't be read. The text has simdjson's
// padding behind it.
void readHistoryLines(const std::string& text, std::optional<TimeStamp> cutOff, HistoryReading& reading);
// The same for who wants to know how each entry ended: of lines about one entry that follow each other only
// the last is added, and those before it are hardly looked at.
void readLastLines(const std::string& text, HistoryReading& reading);

}  // namespace brell
