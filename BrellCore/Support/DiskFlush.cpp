#include "BrellCore/Support/DiskFlush.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace fs = std::filesystem;

namespace brell {

namespace {

// The errors by which file systems answer a request that they do not know.
bool saysNotSupported(int code) {
    const auto answers = {ENOTSUP, EOPNOTSUPP, ENOTTY, EINVAL, ENOSYS};
    return std::find(answers.begin(), answers.end(), code) != answers.end();
}

}  // namespace

bool firstSupportedFlush(std::initializer_list<std::function<int()>> flushes) {
    for (const auto& flush : flushes) {
        int result;
        do {
            result = flush();
        } while (result < 0 && errno == EINTR);
        if (result >= 0) return true;
        if (!saysNotSupported(errno)) return false;
    }
    return false;
}

bool flushToDisk(const UniqueFd& file) {
    return firstSupportedFlush({
#ifdef F_FULLFSYNC
        // fsync on macOS stops at the drive's own cache.
        [&] { return ::fcntl(file.get(), F_FULLFSYNC); },
#endif
        [&] { return ::fsync(file.get()); },
    });
}

void flushFolder(const fs::path& folder) {
    const UniqueFd descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor) flushToDisk(descriptor);
}

std::error_code createFolders(const fs::path& folder) {
    if (::mkdir(folder.c_str(), 0700) == 0) {
        flushFolder(folder.parent_path());
        return {};
    }
    const std::error_code failed(errno, std::generic_category());
    if (failed == std::errc::no_such_file_or_directory && folder.has_relative_path()) {
        if (const std::error_code above = createFolders(folder.parent_path())) return above;
        return createFolders(folder);
    }
    std::error_code unknown;
    if (failed != std::errc::file_exists) return failed;
    return fs::is_directory(folder, unknown) ? std::error_code()
                                             : std::make_error_code(std::errc::not_a_directory);
}

UniqueFd openInFolder(const fs::path& file, int flags, unsigned permissions, std::error_code& noFolder) {
    constexpr int mostAttempts = 5;  // a folder just made may be removed at once
    for (int attempt = 1;; ++attempt) {
        int descriptor;
        do {
            descriptor = ::open(file.c_str(), flags, permissions);
        } while (descriptor < 0 && errno == EINTR);
        if (descriptor >= 0) return UniqueFd(descriptor);
        if ((errno != ENOENT && errno != ENOTDIR) || attempt == mostAttempts) return UniqueFd();
        noFolder = createFolders(file.parent_path());
        if (noFolder) return UniqueFd();
    }
}

}  // namespace brell
