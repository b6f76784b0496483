// Reading whole files, and telling whether a file is still the one that was read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "BrellCore/Support/Failure.h"

namespace brell {

// Two equal identities of one path mean that its contents were not replaced in between. Times are in
// nanoseconds since 1970.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t size = 0;  // bytes
    std::int64_t modifiedNs = 0;
    std::int64_t changedNs = 0;  // of the file's record; unlike the other, no program can set it back
    bool operator==(const FileIdentity&) const = default;
};

// A file that could not be read, or that is larger than the caller takes.
struct ReadFailure {
    std::filesystem::path path;
    std::string reason;  // no final stop
    int code;            // errno, or 0 when the file itself is the reason
    bool operator==(const ReadFailure&) const = default;
};
std::string describe(const ReadFailure& failure);

class ReadError final : public FailureError<ReadFailure> {
public:
    using FailureError::FailureError;
    ~ReadError() override;
};

struct FileContents {
    std::string bytes;
    FileIdentity identity;
};

// The file's identity now, or nothing when there is no such file. Follows symbolic links. Throws ReadError
// when the system can't say, and for a link to nowhere: what it leads to may only be out of reach.
std::optional<FileIdentity> identityOf(const std::filesystem::path& path);

// The whole file, or nothing when there is no such file. Never waits on a named pipe or a device: what is not
// an ordinary file, can't be read, holds more than mostBytes or is a link to nowhere raises ReadError. The
// returned string has `padding` spare bytes of capacity, as simdjson wants behind its input. It is read into
// `room`, where that is given from one file to the next.
std::optional<FileContents> readFile(const std::filesystem::path& path, std::size_t mostBytes,
                                     std::size_t padding = 0, std::string room = {});

}  // namespace brell
