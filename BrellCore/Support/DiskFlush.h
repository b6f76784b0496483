// From the system's caches to stable storage: the contents of files, the names in folders, new folders.
#pragma once

#include <filesystem>
#include <functional>
#include <initializer_list>
#include <system_error>

#include "BrellCore/Support/UniqueFd.h"

namespace brell {

// False when the system reports that it did not get there; errno says why.
bool flushToDisk(const UniqueFd& file);

// The order in which flushToDisk tries the flushes that a system has, the most thorough first; each answers
// as fsync does. One that is interrupted is tried again, one that is not supported gives way to the next, and
// every other answer is the last word.
bool firstSupportedFlush(std::initializer_list<std::function<int()>> flushes);

// Brings the names in this folder to the disk. Best effort: some file systems refuse it.
void flushFolder(const std::filesystem::path& folder);

// Makes this folder, an absolute path, and those above it where they are missing, for the user alone, and
// brings each new name to the disk: a durable file in a folder that a power cut takes away is lost with it.
// Gives why it could not be made.
std::error_code createFolders(const std::filesystem::path& folder);

// Opens a file below an absolute path as ::open does, makes the folders above it where they are missing, and
// asks again when a signal came between. An empty result leaves errno; noFolder then says why a folder could
// not be made, if that was it.
UniqueFd openInFolder(const std::filesystem::path& file, int flags, unsigned permissions,
                      std::error_code& noFolder);

}  // namespace brell
