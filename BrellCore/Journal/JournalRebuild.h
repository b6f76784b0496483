// A journal that can't be read any more, or lacks changes, replaced by what its history tells.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "BrellCore/Journal/JournalError.h"
#include "BrellCore/Journal/RebuildPlan.h"

namespace brell {

class Journal;

// Why the journal of this directory can't be read, without a final stop; nothing when it can be read or was
// never written. Raises JournalError (cannotRead) for one that can't be read either but is not damaged: a
// newer Brell's, a dry run's, one that others could have written, one that may not be read, a link to
// nowhere.
std::optional<std::string> journalDamage(const std::filesystem::path& directory);

// That a journal which can be read, or was never written, lacks changes that the restore script beside it
// undoes, without a final stop: an older one was put back, or it was removed. Likewise of a copy that was
// kept of such a script, as long as one of these changes has no end in the history. Nothing when it does not.
// Raises JournalError (cannotRead).
std::optional<std::string> lackOfChanges(Journal& journal);

// Told how many bytes of the history were read; false ends the reading there.
using RebuildProgress = std::function<bool(std::uintmax_t done, std::uintmax_t total)>;

// The journal that rebuilding would make of this directory's journal: what that holds, if it can be read, and
// what the history tells. Nothing when goOn ended it.
std::optional<RebuildPlan> planRebuild(const std::filesystem::path& directory, const RebuildProgress& goOn);

struct Rebuilt {
    std::optional<std::filesystem::path> before;        // where it is now; nothing if there was none
    std::optional<std::filesystem::path> scriptBefore;  // a copy of the restore script as it was
    std::optional<std::string> scriptFailure;           // why the script is as it was: a whole sentence
    bool isLacking = false;  // even now, of changes that the script as it was undoes
    bool operator==(const Rebuilt&) const = default;
};

// Replaces a journal that is damaged or lacks changes by the entries of the plan that the user confirmed, and
// writes the restore script. Holds the journal's lock and reads the history again under it; goOn can end it
// there, and gets nothing. JournalError (cannotRebuild, or cannotRead as above) when the history tells
// something else than the plan or nothing at all, when the journal is so no more, or when it can't be
// written. Wherever this ends, and however, the one before is kept and rebuilding can begin anew. Nothing
// outside the directory is touched: of a link only the link is replaced.
std::optional<Rebuilt> rebuildJournal(const std::filesystem::path& directory, const RebuildPlan& confirmed,
                                      const RebuildProgress& goOn, const Clock& clock = systemNow);

}  // namespace brell
