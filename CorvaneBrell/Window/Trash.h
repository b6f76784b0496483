// The desktop's Trash.
#pragma once

#include <filesystem>

namespace brell {

// Moves a file or a folder there, whole. From any thread. Raises std::runtime_error with the system's reason,
// without a final stop, and what was to be moved is in its place.
void moveToTrash(const std::filesystem::path& path);

}  // namespace brell
