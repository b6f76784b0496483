#include "BrellCore/Journal/JournalLeaving.h"

#include "BrellCore/Journal/Journal.h"
#include "BrellCore/Journal/JournalPlace.h"
#include "BrellCore/Journal/OwnFiles.h"
#include "BrellCore/Journal/RestoreScript.h"
#include "BrellCore/Support/FileContents.h"
#include "BrellCore/Support/Text.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

JournalError cannotLeave(std::string text) {
    return JournalError({JournalFailure::Kind::cannotLeave, std::move(text)});
}

bool isThere(const fs::path& folder) {
    std::error_code unknown;
    return fs::symlink_status(folder, unknown).type() != fs::file_type::not_found;
}

// The script, or a copy of one that was kept: it may be all that undoes what an earlier journal held.
std::optional<std::string> scriptOfUnknown(Journal& journal, const fs::path& folder) {
    for (const fs::path& script : RestoreScript::allIn(folder)) try {
            if (!RestoreScript::unknownChanges(script, journal).empty())
                return RestoreScript::undoesUnknown(script) + "; run it or move it elsewhere first";
        } catch (const ReadError& error) {
            return script.string() + " may undo changes that the journal does not know, and can't be read (" +
                   error.failure().reason + "); move it elsewhere first";
        }
    return std::nullopt;
}

void checkMayLeave(Journal& journal) {
    if (auto reason = whyNotToLeave(journal)) throw cannotLeave(*std::move(reason));
}

}  // namespace

std::optional<std::string> whyNotToLeave(Journal& journal) try {
    if (const std::size_t active = journal.activeIDs().size())
        return counted(active, "change is", "changes are") + " still active";
    const fs::path &file = journal.fileURL(), folder = file.parent_path();
    for (const fs::path& place : {folder, file})
        if (fs::is_symlink(place)) return place.string() + " is a link, so that the journal lies elsewhere";
    if (!fs::exists(folder)) return std::nullopt;
    if (auto script = scriptOfUnknown(journal, folder)) return script;
    if (const auto other = notOfTheJournal(folder))
        return other->string() + " is not Brell's, and lies in Brell's folder";
    return std::nullopt;
} catch (const fs::filesystem_error& error) {
    if (error.code() == std::errc::no_such_file_or_directory) return std::nullopt;  // gone meanwhile
    return error.path1().string() + ": " + error.code().message();
}

bool leaveJournal(Journal& journal, const TakeAway& takeAway) {
    const fs::path folder = journal.fileURL().parent_path();
    checkMayLeave(journal);  // before the lock's file is made, so that a refusal leaves nothing behind
    if (!isThere(folder)) return false;
    const Journal::Exclusive held = journal.exclusive();
    checkMayLeave(journal);  // again: somebody else may have changed something meanwhile
    try {
        takeAway(folder);
    } catch (const std::exception& error) {
        if (!isThere(folder)) return false;
        throw cannotLeave(folder.string() + ": " + error.what());
    }
    return true;
}

}  // namespace brell
