// Obstacles to a change, or to its undoing, looked for before the first write of a run.
#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "CorvaneBrell/Machine.h"

namespace brell {

// The thing that stands in the folder's place, or in that of one above it, so that the folder can neither be
// nor be made: a file, or a link to nowhere.
std::optional<std::filesystem::path> inTheWayOf(const std::filesystem::path& folder);

// Whole sentences for the user: about preference files that are symbolic links, belong to another user than
// this user or are locked, and about a journal folder that can't be written. Nothing is changed and nothing
// raised; a change is still safe, because each write is read back.
std::vector<std::string> safetyWarnings(const Machine& machine, uid_t user = ::geteuid());

}  // namespace brell
