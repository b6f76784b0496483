// Finder, or what the desktop has in its place.
#pragma once

#include <filesystem>

namespace brell {

// Shows the file, selected in its folder. False where the platform can't select one, which is so off macOS:
// then the folder is to be opened. Main thread only; does not wait.
bool selectInFileViewer(const std::filesystem::path& file);

}  // namespace brell
