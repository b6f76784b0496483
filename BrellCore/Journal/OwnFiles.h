// Which files are the journal's own, so that nothing else is saved in their places.
#pragma once

#include "BrellCore/Journal/Journal.h"

namespace brell {

// True when this place, taken or not, is the journal's or that of a file that Brell keeps for it: its
// history, its script, its lock, its marks, and what a rebuilding leaves.
bool isOfTheJournal(const std::filesystem::path& file, const Journal& journal);

}  // namespace brell
