#include "BrellCore/Support/Folders.h"

#include <fcntl.h>

#include "BrellCore/Support/DiskFlush.h"

namespace fs = std::filesystem;

namespace brell {

std::error_code createFolders(const fs::path& folder) {
    std::error_code failed;
    const bool isNew = fs::create_directory(folder, failed);
    if (failed == std::errc::no_such_file_or_directory && folder.has_relative_path()) {
        if (const std::error_code above = createFolders(folder.parent_path())) return above;
        return createFolders(folder);
    }
    // What stands there under the folder's name is a file.
    if (failed == std::errc::file_exists) return std::make_error_code(std::errc::not_a_directory);
    if (isNew) flushFolder(folder.parent_path());
    return failed;
}

void flushFolder(const fs::path& folder) {
    const UniqueFd descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor) flushToDisk(descriptor);
}

}  // namespace brell
