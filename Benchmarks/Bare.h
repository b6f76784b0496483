// The bare system calls that our operations are measured against, and the folder in which both sides work.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace brell::bare {

inline int checked(int result, std::string_view what) {
    if (result < 0) throw std::system_error(errno, std::generic_category(), std::string(what));
    return result;
}

// A folder of the benchmark's own below TMPDIR, removed at the end. It must be on a real disk: synchronising
// costs nothing in memory, and every ratio would then be that of the rest alone.
class ScratchFolder {
public:
    ScratchFolder() : path(made()) {}
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path path;

private:
    static std::filesystem::path made() {
        std::string name = (std::filesystem::temp_directory_path() / "brell-benchmark-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) checked(-1, name);
        return name;
    }
};

inline int open(const std::string& file, int flags, mode_t mode = 0600) {
    return checked(::open(file.c_str(), flags | O_CLOEXEC, mode), file);
}

inline void stat(const std::string& file) {
    struct stat status;
    checked(::stat(file.c_str(), &status), file);
}

inline void synchronize(int descriptor) {
#ifdef F_FULLFSYNC
    checked(::fcntl(descriptor, F_FULLFSYNC), "F_FULLFSYNC");
#else
    checked(::fsync(descriptor), "fsync");
#endif
}

inline void writeOnce(int descriptor, std::string_view bytes) {
    if (::write(descriptor, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
        checked(-1, "write");
}

// Temporary file, write, rename: what any safe replacement needs.
inline void replace(const std::string& temporary, const std::string& target, std::string_view bytes) {
    const int file = open(temporary, O_WRONLY | O_CREAT | O_EXCL);
    writeOnce(file, bytes);
    ::close(file);
    checked(::rename(temporary.c_str(), target.c_str()), target);
}

// The same, on stable storage at the end: the file before it gets its name, then the folder.
inline void replaceDurably(const std::string& temporary, const std::string& target, std::string_view bytes,
                           const std::string& folder) {
    const int file = open(temporary, O_WRONLY | O_CREAT | O_EXCL);
    writeOnce(file, bytes);
    synchronize(file);
    ::close(file);
    checked(::rename(temporary.c_str(), target.c_str()), target);
    const int directory = open(folder, O_RDONLY | O_DIRECTORY);
    synchronize(directory);
    ::close(directory);
}

// The whole file, in one piece and up to its end.
inline std::string read(const std::string& file) {
    const int descriptor = open(file, O_RDONLY);
    struct stat status;
    checked(::fstat(descriptor, &status), file);
    std::string bytes(static_cast<std::size_t>(status.st_size) + 1, '\0');
    const auto size = ::read(descriptor, bytes.data(), bytes.size());
    ::close(descriptor);
    if (size < 0) checked(-1, file);
    bytes.resize(static_cast<std::size_t>(size));
    return bytes;
}

// Every name in the folder, which finding the leftovers of a crash takes.
inline void list(const std::filesystem::path& folder) {
    for (const auto& entry : std::filesystem::directory_iterator(folder)) static_cast<void>(entry);
}

}  // namespace brell::bare
