#include "BrellCore/Support/Ownership.h"

#include <sys/stat.h>

#include <cerrno>
#include <system_error>

namespace brell {

std::optional<std::string> whyNotOnlyOurs(const std::filesystem::path& path, uid_t user) {
    constexpr unsigned root = 0;
    struct stat status;
    if (::stat(path.c_str(), &status) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
        throw std::system_error(errno, std::generic_category(), path.string());
    }
    if (status.st_uid != user && status.st_uid != root) return path.string() + " belongs to another user";
    if ((status.st_mode & S_IWOTH) != 0) return path.string() + " can be written by every user of this Mac";
    if ((status.st_mode & S_IWGRP) != 0 && status.st_gid != root && status.st_gid != user)
        return path.string() + " can be written by a group of users";
    return std::nullopt;
}

std::optional<uid_t> ownerOf(const std::filesystem::path& path) {
    struct stat status;
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
    return status.st_uid;
}

}  // namespace brell
