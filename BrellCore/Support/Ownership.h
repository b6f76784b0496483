// The check whether others than this user could have written what a file holds.
#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <string>

namespace brell {

// Why what stands at this path, links followed, may be another user's work: "/journal can be written by every
// user of this Mac"; no final stop. Nothing when it belongs to this user or to root and nobody else may write
// it, and when nothing stands there. root's group may write it, and one with the user's own number, as many
// systems give each user; on macOS every user is in the same one. Raises std::system_error when the system
// can't say.
std::optional<std::string> whyNotOnlyOurs(const std::filesystem::path& path, uid_t user = ::geteuid());

// Whom what stands at this path belongs to, links followed; nothing where the system can't say.
std::optional<uid_t> ownerOf(const std::filesystem::path& path);

}  // namespace brell
