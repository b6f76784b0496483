// Which files are the journal's own, so that nothing else is saved in their places.
#pragma once

#include "BrellCore/Journal/Journal.h"

namespace brell {

// True when this place, taken or not, is the journal's or that of a file that Brell keeps for it: its
// history, its script, its lock, its marks, and what a rebuilding leaves.
bool isOfTheJournal(const std::filesystem::path& file, const Journal& journal);

// Something in the journal's folder that is neither Brell's nor what Finder leaves in each; nothing when
// there is no such thing. Raises std::filesystem::filesystem_error.
std::optional<std::filesystem::path> notOfTheJournal(const std::filesystem::path& folder);

}  // namespace brell
