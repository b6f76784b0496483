// Where a dry run keeps its journal.
#pragma once

#include <filesystem>
#include <ostream>

namespace brell {

// The folder for the journal of a dry run that was told this one: it itself, when it has no journal or a dry
// run's. Otherwise a throw-away copy, so that a dry run knows what a real one would, and what a real one
// reads stays as it is; notes gets the line that says so. Raises JournalError for a journal that can't be
// read, std::runtime_error when it can't be copied.
std::filesystem::path dryRunDirectory(const std::filesystem::path& directory, std::ostream& notes);

}  // namespace brell
