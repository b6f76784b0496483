#include "BrellCore/Support/FileContents.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "BrellCore/Support/UniqueFd.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

std::int64_t nanoseconds(const struct timespec& time) {
    return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

FileIdentity identityFrom(const struct stat& status) {
#ifdef __APPLE__
    const struct timespec modified = status.st_mtimespec, changed = status.st_ctimespec;
#else
    const struct timespec modified = status.st_mtim, changed = status.st_ctim;
#endif
    return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino),
            static_cast<std::uint64_t>(status.st_size), nanoseconds(modified), nanoseconds(changed)};
}

ReadError systemError(const fs::path& path) {
    const int code = errno;  // first: composing the text may change it
    return ReadError({path, systemMessage(code), code});
}

ReadError notOrdinary(const fs::path& path) {
    return ReadError({path, "it is not an ordinary file", 0});
}

bool saysThatNothingIsThere(int code) {
    return code == ENOENT || code == ENOTDIR;
}

// For a path at which there is no file: a link to nowhere is no file that was never written.
void checkNoLinkAt(const fs::path& path) {
    struct stat status;
    if (::lstat(path.c_str(), &status) == 0) {
        if (S_ISLNK(status.st_mode)) throw ReadError({path, "it is a link to a file that is not there", 0});
    } else if (!saysThatNothingIsThere(errno)) {
        throw systemError(path);
    }
}

// Fills these bytes with what the file holds, stopping one byte beyond most: enough to see that it is too
// much. One byte more than it is expected to hold shows its end.
bool readAll(const UniqueFd& file, std::string& bytes, std::size_t expected, std::size_t most) {
    for (std::size_t had = 0;;) {
        const std::size_t room = had <= expected ? expected + 1 - had : 4096;
        bytes.resize(had + std::min(room, most + 1 - had));
        const ssize_t got = ::read(file.get(), bytes.data() + had, bytes.size() - had);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return false;
        had += static_cast<std::size_t>(got);
        if (got > 0 && had <= most) continue;
        bytes.resize(had);
        return true;
    }
}

}  // namespace

std::string describe(const ReadFailure& failure) {
    return "The file " + failure.path.string() + " could not be read: " + failure.reason + ".";
}

ReadError::~ReadError() = default;

std::optional<FileIdentity> identityOf(const fs::path& path) {
    struct stat status;
    if (::stat(path.c_str(), &status) == 0) return identityFrom(status);
    if (!saysThatNothingIsThere(errno)) throw systemError(path);
    checkNoLinkAt(path);
    return std::nullopt;
}

std::optional<FileContents> readFile(const fs::path& path, std::size_t mostBytes, std::size_t padding,
                                     std::string room) {
    // Without waiting: opening a named pipe would otherwise last until a program writes to it.
    const UniqueFd file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file && saysThatNothingIsThere(errno)) {
        checkNoLinkAt(path);
        return std::nullopt;
    }
    // A socket, on Linux and on macOS, or a device that is not there.
    if (!file && (errno == ENXIO || errno == EOPNOTSUPP)) throw notOrdinary(path);
    if (!file) throw systemError(path);

    struct stat status;
    if (::fstat(file.get(), &status) != 0) throw systemError(path);
    if (!S_ISREG(status.st_mode)) throw notOrdinary(path);
    const ReadError tooLarge({path, "it holds more than " + std::to_string(mostBytes) + " bytes", 0});
    FileContents contents{std::move(room), identityFrom(status)};
    if (contents.identity.size > mostBytes) throw tooLarge;

    const auto expected = static_cast<std::size_t>(contents.identity.size);
    contents.bytes.reserve(expected + 1 + padding);
    if (!readAll(file, contents.bytes, expected, mostBytes)) throw systemError(path);
    if (contents.bytes.size() > mostBytes) throw tooLarge;
    contents.bytes.reserve(contents.bytes.size() + padding);
    return contents;
}

}  // namespace brell
