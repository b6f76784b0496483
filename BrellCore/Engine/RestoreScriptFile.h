// The restore script on disk: brought up to date after every change, and remembered when that failed.
#pragma once

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "BrellCore/Journal/Journal.h"
#include "BrellCore/Support/FileContents.h"

namespace brell {

// Any thread may call it. Order of locks: its own mutex, then the journal's.
class RestoreScriptFile {
public:
    // Nothing: no script is kept. The journal must outlive the object.
    RestoreScriptFile(Journal& journal, std::optional<std::filesystem::path> file, Clock clock);

    // As it would be written now. Raises JournalError when the journal can't be read.
    std::string text();

    // Makes the file say what undoes the active changes: writes it, unless it is the one written last, for
    // the same entries; what it says of an entry never changes. One that undoes what the journal does not
    // know, or can't be read, may be all that does: a copy of it is kept. True when it was written. A failure
    // is no failure of the change before it: the script stays as it was, and the next call tries again.
    bool keep() noexcept;

    // In whole sentences which copy was kept, or why the script is not as it should be; nothing when neither
    // is so, or when that was told.
    std::optional<std::string> untoldTrouble();

private:
    struct Written {
        std::vector<Uuid> entries;
        FileIdentity identity;
    };
    bool keepLocked();
    void keepUnknown();
    void note(std::optional<std::string> trouble);

    Journal& journal_;
    const std::optional<std::filesystem::path> file_;
    const Clock clock_;

    std::mutex mutex_;  // guards written_, kept_ and every writing
    std::optional<Written> written_;
    std::optional<FileIdentity> kept_;  // of the script that was copied last

    std::mutex troubleMutex_;  // guards all below; never held while something is written
    std::optional<std::string> untoldCopy_;
    std::optional<std::string> trouble_;
    bool isTold_ = false;
};

}  // namespace brell
