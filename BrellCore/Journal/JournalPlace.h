// Where a journal keeps what, and whether that may be believed and written.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "BrellCore/Support/FileLock.h"

namespace brell {

std::filesystem::path historyFolder(const std::filesystem::path& directory);

// The journal's file itself, not the link that leads to it. Raises JournalError (cannotWrite) for a link to
// nowhere.
std::filesystem::path withoutLink(const std::filesystem::path& journal);

// The lock of a journal whose file lies in this folder.
std::filesystem::path lockIn(const std::filesystem::path& folder);
// Waits for other holders, half a minute at most, and then raises JournalError (isBusy). Raises
// std::runtime_error, its text without a final stop, when the lock can't be taken.
FileLock takeLock(const std::filesystem::path& lockFile);

// The places that a journal is read from: its folder, its file, and where that is a link the file it leads to
// and the folder of that.
std::vector<std::filesystem::path> sourcesOf(const std::filesystem::path& journal);
// Why one of these may say what others want, without a final stop. Raises std::system_error when that can't
// be told.
std::optional<std::string> whyNotTrusted(const std::vector<std::filesystem::path>& sources);

// In the folder of the journal, but another lock: of what waits for a relaunch.
inline constexpr const char* relaunchLockName = ".relaunches.lock";

// Stands beside the file from before a damaged one leaves its place until the new one has taken it.
std::filesystem::path rebuildMark(const std::filesystem::path& journal);
// The word that is added, before the moment, to the name of a journal or of a script that is kept.
inline constexpr std::string_view damagedEnding = ".damaged-", beforeEnding = ".before-";

// True when anything has this name, also a link to nothing. Raises ReadError when the system can't say.
bool isTaken(const std::filesystem::path& path);

// The file's name with this ending, and a number where something has that name: what is kept replaces nothing
// that was kept before. Raises what isTaken does.
std::filesystem::path freeName(const std::filesystem::path& file, const std::string& ending);

// A second name for a file, so that its place is never empty. Of a link: what it leads to stays where it is.
std::error_code giveName(const std::filesystem::path& file, const std::filesystem::path& name);

// Of a file that is not there: why it is no journal that was never written, without a final stop; nothing
// when it is.
std::optional<std::string> whyNoFreshStart(const std::filesystem::path& journal);

}  // namespace brell
