// What the journal page says about changes: what was done, where the way back leads, what became of them.
#pragma once

#include <string>
#include <vector>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Journal/History.h"

namespace brell {

// A line of the history, as far as it is told: there may be a hundred thousand.
struct ToldLine {
    TimeStamp at;
    EntryStatus event;
    std::string title;  // of what was changed
    std::string words;  // what became of it
    bool operator==(const ToldLine&) const = default;
};

namespace JournalWords {

// One for each key: "com.apple.dock autohide: true; back to absent". For an agent how it was switched.
std::vector<std::string> keyLines(const JournalEntry& entry);

// Where a restore leads: "absent"; with several keys "autohide absent, tilesize 36"; for an agent "on".
std::string wayBack(const JournalEntry& entry);

// "Applied", "Restored", "Failed: reason", "Interrupted".
std::string event(const HistoryLine& line);

// The lines that tell something, newest first. The beginning of a change that came to its end says nothing
// that its end does not.
std::vector<ToldLine> told(const std::vector<HistoryLine>& history, const TweakCatalog& catalog);

}  // namespace JournalWords

}  // namespace brell
