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

}  // namespace brell
