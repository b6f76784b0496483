#include "CorvaneBrell/DryRunJournal.h"

#include <stdexcept>

#include "BrellCore/Journal/Journal.h"
#include "BrellCore/Support/DiskFlush.h"
#include "BrellCore/Support/DurableFile.h"
#include "CorvaneBrell/Console.h"
#include "CorvaneBrell/Machine.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

// As in every journal, a history that can't be read is passed over.
void copyHistory(const fs::path& from, const fs::path& to) {
    std::error_code passedOver = createFolders(to);
    for (const fs::directory_entry& day : fs::directory_iterator(from, passedOver))
        if (day.is_regular_file(passedOver)) fs::copy_file(day, to / day.path().filename(), passedOver);
}

// The marker is the first file, so that the copy is never taken for a real journal.
void copyJournal(const Journal& journal, const fs::path& to) try {
    Journal::markForDryRun(to);
    fs::copy_file(journal.fileURL(), to / Journal::fileName);
    copyHistory(journal.historyDirectory(), to / journal.historyDirectory().filename());
} catch (const ReplaceError& error) {
    throw std::runtime_error(error.what());
} catch (const fs::filesystem_error& error) {
    throw std::runtime_error("The journal " + journal.fileURL().string() + " could not be copied to " +
                             to.string() + " for the dry run: " + error.code().message() + ".");
}

}  // namespace

fs::path dryRunDirectory(const fs::path& directory, std::ostream& notes) {
    if (Journal::isMarkedForDryRun(directory)) return directory;
    const auto journal = Journal::open(directory);
    if (!fs::exists(journal->fileURL())) return directory;
    const fs::path copy = throwAwayDirectory("dry-run");
    copyJournal(*journal, copy);
    printLine(notes, "note: The dry run works on a copy of the journal in " + directory.string() +
                         ", which stays as it is.");
    return copy;
}

}  // namespace brell
