// An advisory lock between processes, and between threads that each take it for themselves.
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>

#include "BrellCore/Support/UniqueFd.h"

namespace brell {

// Held as long as the object lives; the system releases it when the process ends, however it ends.
class FileLock {
public:
    // Takes the lock on this file, creating it and the folders above it when absent, and waits up to patience
    // while another holder has it. Nothing when the time is up. Throws std::runtime_error, its text without a
    // final stop, when the file can't be made or locked or is no ordinary one. Not re-entrant: a holder that
    // asks again waits for itself.
    static std::optional<FileLock> acquire(const std::filesystem::path& file,
                                           std::chrono::milliseconds patience);

    const std::filesystem::path& file() const { return path_; }

    // False when the file was removed since: another one may be locked in its place. Throws
    // std::runtime_error when the system can't say.
    bool stillExcludes() const;

private:
    FileLock(std::filesystem::path path, UniqueFd file) : path_(std::move(path)), file_(std::move(file)) {}
    std::filesystem::path path_;
    UniqueFd file_;
};

}  // namespace brell
