// The end of a journal that is needed no more: its folder is taken away whole.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace brell {

class Journal;

// Takes a folder away by one renaming, to where the user finds it again. Raises std::exception, its text a
// sentence without its final stop, when the folder is still in its place.
using TakeAway = std::function<void(const std::filesystem::path& folder)>;

// Why the folder of this journal can't be taken away, without a final stop: changes are active, it is kept in
// another place behind a link, or something else lies in it. Raises JournalError (cannotRead).
std::optional<std::string> whyNotToLeave(Journal& journal);

// Takes the folder away while nobody else can save an entry; a program that waits for that begins a journal
// anew, with what it knows to be active. False when there is no folder. Raises JournalError: cannotLeave for
// the above and when it can't be taken away, or as the journal's lock does. The folder is then in its place.
bool leaveJournal(Journal& journal, const TakeAway& takeAway);

}  // namespace brell
