#include "BrellCore/Engine/RestoreScriptFile.h"

#include <utility>

#include "BrellCore/Journal/RestoreScript.h"
#include "BrellCore/Support/DurableFile.h"
#include "BrellCore/Support/Failure.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

std::optional<FileIdentity> identityIfKnown(const fs::path& file) try {
    return identityOf(file);
} catch (const ReadError&) {
    return std::nullopt;
}

std::string reasonOf(const std::exception& error) {
    if (const auto* replace = dynamic_cast<const ReplaceError*>(&error))
        return systemMessage(replace->failure().code) + ".";
    return error.what();
}

}  // namespace

RestoreScriptFile::RestoreScriptFile(Journal& journal, std::optional<fs::path> file, Clock clock)
    : journal_(journal), file_(std::move(file)), clock_(std::move(clock)) {}

std::string RestoreScriptFile::text() {
    return RestoreScript::render(journal_.active(), clock_());
}

bool RestoreScriptFile::keep() noexcept try {
    const std::lock_guard lock(mutex_);
    const bool wasWritten = file_ && keepLocked();
    note(std::nullopt);
    return wasWritten;
} catch (const std::exception& error) {
    note("The restore script " + file_->string() + " could not be written: " + reasonOf(error) +
         " Until it can be, it may not undo every change.");
    return false;
}

bool RestoreScriptFile::keepLocked() {
    // A file that was removed or replaced is not the one that was written.
    const bool isOurs = written_ && identityIfKnown(*file_) == written_->identity;
    if (isOurs && written_->entries == journal_.activeIDs()) return false;
    if (!isOurs) keepUnknown();
    written_ = std::nullopt;
    const std::vector<JournalEntry> active = journal_.active();
    RestoreScript::save(*file_, RestoreScript::render(active, clock_()));
    if (const auto identity = identityIfKnown(*file_)) {
        written_ = Written{{}, *identity};
        for (const JournalEntry& entry : active) written_->entries.push_back(entry.id);
    }
    return true;
}

void RestoreScriptFile::keepUnknown() {
    const auto found = identityIfKnown(*file_);
    if (found && found == kept_) return;  // it could not be replaced since
    std::optional<fs::path> copy;
    std::string why = "The restore script undid changes that the journal does not know.", use;
    try {
        if (RestoreScript::unknownChanges(*file_, journal_).empty()) return;
        copy = RestoreScript::keepAside(*file_, clock_());
        use = ", and puts back what was changed when it was written";
    } catch (const ReadError& error) {
        copy = RestoreScript::keepUnread(*file_, clock_());
        why = error.what();
    }
    if (!copy) return;
    kept_ = identityIfKnown(*file_);  // a second name makes it another one
    const std::lock_guard lock(troubleMutex_);
    untoldCopy_ = why + " It is kept as " + copy->string() + use + ".";
}

std::optional<std::string> RestoreScriptFile::untoldTrouble() {
    const std::lock_guard lock(troubleMutex_);
    if (untoldCopy_) return std::exchange(untoldCopy_, std::nullopt);
    if (isTold_) return std::nullopt;
    isTold_ = trouble_.has_value();
    return trouble_;
}

void RestoreScriptFile::note(std::optional<std::string> trouble) {
    const std::lock_guard lock(troubleMutex_);
    trouble_ = std::move(trouble);
    if (!trouble_) isTold_ = false;
}

}  // namespace brell
