#include "BrellCore/Support/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <thread>

#include "BrellCore/Support/AwakeClock.h"
#include "BrellCore/Support/DiskFlush.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

std::system_error failure(const fs::path& file) {
    return std::system_error(errno, std::generic_category(), file.string());
}

std::runtime_error notOrdinary(const fs::path& file) {
    return std::runtime_error(file.string() + ": it is not an ordinary file");
}

// Why it could not be opened: never through a link, which another program may have planted.
[[noreturn]] void throwWhyNotOpened(const fs::path& file) {
    const std::system_error error = failure(file);
    std::error_code unknown;
    if (fs::is_symlink(file, unknown)) throw std::runtime_error(file.string() + ": it is a symbolic link");
    for (const std::errc socket : {std::errc::no_such_device_or_address, std::errc::operation_not_supported})
        if (error.code() == socket) throw notOrdinary(file);  // on Linux, on macOS
    throw error;
}

UniqueFd openLockFile(const fs::path& file) {
    std::error_code noFolder;
    UniqueFd opened =
        openInFolder(file, O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0600, noFolder);
    if (noFolder) throw std::system_error(noFolder, file.parent_path().string());
    if (!opened) throwWhyNotOpened(file);
    return opened;
}

// False when the file was removed after it was opened: a lock on it would exclude nobody. Throws when
// the system can't say: waiting for another holder would not help.
bool isStillAt(const fs::path& file, const UniqueFd& descriptor) {
    struct stat opened, named;
    if (::fstat(descriptor.get(), &opened) != 0) throw failure(file);
    if (!S_ISREG(opened.st_mode)) throw notOrdinary(file);
    if (::stat(file.c_str(), &named) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) return false;
        throw failure(file);
    }
    return opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

}  // namespace

bool FileLock::stillExcludes() const {
    return isStillAt(path_, file_);
}

std::optional<FileLock> FileLock::acquire(const fs::path& file, std::chrono::milliseconds patience) {
    using namespace std::chrono_literals;
    const auto deadline = AwakeClock::now() + patience;
    auto pause = 1ms;
    for (;;) {
        UniqueFd descriptor = openLockFile(file);
        if (::flock(descriptor.get(), LOCK_EX | LOCK_NB) == 0) {
            if (isStillAt(file, descriptor)) return FileLock(file, std::move(descriptor));
        } else if (errno != EWOULDBLOCK && errno != EINTR) {
            throw failure(file);
        }
        if (AwakeClock::now() >= deadline) return std::nullopt;
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, 50ms);
    }
}

}  // namespace brell
