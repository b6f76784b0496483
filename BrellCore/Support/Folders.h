// Folders that survive a power cut.
#pragma once

#include <filesystem>
#include <system_error>

namespace brell {

// Makes this folder, an absolute path, and those above it where they are missing, and brings each new name to
// the disk: a durable file in a folder that a power cut takes away is lost with it. Gives why it could not be
// made.
std::error_code createFolders(const std::filesystem::path& folder);

// Brings the names in this folder to the disk. Best effort: some file systems refuse it.
void flushFolder(const std::filesystem::path& folder);

}  // namespace brell
