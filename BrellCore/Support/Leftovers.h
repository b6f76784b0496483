// The hidden files through which others are replaced, and what killed processes leave of them.
#pragma once

#include <filesystem>
#include <vector>

namespace brell {

// A new name beside the file: ".NAME.UUID.tmp".
std::filesystem::path temporaryFor(const std::filesystem::path& target);
// The file that such a name is for; empty for any other name.
std::filesystem::path targetOf(const std::filesystem::path& temporary);

// Removes such files, and those for names that begin with a target's and a dot, when they are ordinary ones
// and older than a day: nobody writes for so long. Best effort; each folder is looked through once.
void removeLeftovers(const std::vector<std::filesystem::path>& targets) noexcept;

}  // namespace brell
