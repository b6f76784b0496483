// The POSIX shell script beside the journal that undoes every active change when the application is gone.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "BrellCore/Journal/JournalEntry.h"

namespace brell {
class Journal;
}

namespace brell::RestoreScript {

inline constexpr std::string_view fileName = "restore.sh";
inline constexpr std::string_view exportName = "corvane-brell-restore.sh";  // of a copy that the user saves

// The whole text for the active ones of these entries, newest first. Whatever the entries hold, none of it
// can become a command: data stands in single quotes, comments stay on one line.
std::string render(const std::vector<JournalEntry>& entries, TimeStamp writtenAt);
// Makes the text this file's contents, durably. Raises ReplaceError.
void save(const std::filesystem::path& file, std::string_view text);

// Copies a script that undoes something, durably, under the name of this moment, and gives that name; nothing
// where there is no such script. Raises ReadError and ReplaceError.
std::optional<std::filesystem::path> keepAside(const std::filesystem::path& file, TimeStamp now);
// The same for one that can't be read: it gets this name as a second one, or instead of its own where there
// are no second names. Nothing for a folder, which no script replaces.
std::optional<std::filesystem::path> keepUnread(const std::filesystem::path& file, TimeStamp now);

// The script of this folder, and every copy that was kept of an earlier one. Raises fs::filesystem_error.
std::vector<std::filesystem::path> allIn(const std::filesystem::path& folder);

// The line by which a script names a change.
std::string nameOf(const JournalEntry& entry);
// The names in this script of changes that are none of the journal's: an older journal took the place of the
// one that the script was written for, or that one was removed. None where there is no script. Raises
// ReadError and JournalError (cannotRead).
std::vector<std::string> unknownChanges(const std::filesystem::path& file, Journal& journal);
// That there are any, without a final stop.
std::string undoesUnknown(const std::filesystem::path& file);

// One single-quoted shell word.
std::string quote(std::string_view text);
// The value as arguments of `defaults write`.
std::string valueArgs(const PrefValue& value);
// The text that `defaults read` prints for the value; nothing for arrays, which are never compared.
std::optional<std::string> defaultsReadText(const PrefValue& value);
// The line that puts one key back.
std::string preferenceLine(const JournaledWrite& write);
// The lines that put one LaunchAgent back.
std::vector<std::string> agentLines(const AgentCapture& agent);

}  // namespace brell::RestoreScript
