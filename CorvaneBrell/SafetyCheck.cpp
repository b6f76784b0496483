#include "CorvaneBrell/SafetyCheck.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <optional>

#include "BrellCore/Support/Failure.h"
#include "CorvaneBrell/Platform/FileFlags.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

// The thing at the path itself, a symbolic link included; nothing when nothing does.
std::optional<struct stat> statusOf(const fs::path& path) {
    struct stat status;
    return ::lstat(path.c_str(), &status) == 0 ? std::optional(status) : std::nullopt;
}

std::optional<std::string> warningAboutPreferences(const fs::path& file, uid_t user) {
    const auto status = statusOf(file);
    if (!status) return std::nullopt;
    const std::string subject = "The preference file " + file.string();
    if (S_ISLNK(status->st_mode))
        return subject + " is a symbolic link, which a change may replace by an ordinary file.";
    if (status->st_uid != user)
        return subject + " belongs to another user, so that its settings may not be changeable.";
    if (isLocked(*status) || (status->st_mode & S_IWUSR) == 0)
        return subject + " is locked, so that its settings may not be changeable.";
    return std::nullopt;
}

// The folder itself, or the nearest one above it, at whose name anything stands.
fs::path nearestThere(const fs::path& folder) {
    return statusOf(folder) || !folder.has_relative_path() ? folder : nearestThere(folder.parent_path());
}

// Why no file can be made in this folder, or in the one that would hold it; 0 when one can.
int obstacleTo(const fs::path& folder) {
    if (inTheWayOf(folder)) return ENOTDIR;
    return ::faccessat(AT_FDCWD, nearestThere(folder).c_str(), W_OK | X_OK, AT_EACCESS) == 0 ? 0 : errno;
}

}  // namespace

std::optional<fs::path> inTheWayOf(const fs::path& folder) {
    const fs::path there = nearestThere(folder);
    std::error_code unknown;
    const fs::file_type type = fs::status(there, unknown).type();
    const bool isKnown = type != fs::file_type::none;  // may be a folder that can't be looked at
    return isKnown && type != fs::file_type::directory ? std::optional(there) : std::nullopt;
}

std::vector<std::string> safetyWarnings(const Machine& machine, uid_t user) {
    std::vector<std::string> warnings;
    for (const fs::path& file : machine.preferenceFiles)
        if (auto warning = warningAboutPreferences(file, user)) warnings.push_back(*std::move(warning));
    if (const int obstacle = obstacleTo(machine.journalDirectory))
        warnings.push_back("The journal folder " + machine.journalDirectory.string() +
                           " cannot be written, so that nothing can be changed: " + systemMessage(obstacle) +
                           ".");
    return warnings;
}

}  // namespace brell
