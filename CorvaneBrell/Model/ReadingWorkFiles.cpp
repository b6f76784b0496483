// The saving of files that the user asked for.

#include <stdexcept>

#include "BrellCore/Engine/Report.h"
#include "BrellCore/Journal/JournalRebuild.h"
#include "BrellCore/Journal/OwnFiles.h"
#include "BrellCore/Support/DurableFile.h"
#include "CorvaneBrell/Dependencies.h"
#include "CorvaneBrell/Model/ReadingWork.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

fs::path save(const fs::path& file, std::string_view contents, const Journal& journal) try {
    if (isOfTheJournal(file, journal))
        throw std::runtime_error(file.string() + " belongs to Brell's journal; choose another name.");
    std::error_code unknown;  // replacing it will say why
    if (const auto found = fs::symlink_status(file, unknown); exists(found) && !is_regular_file(found))
        throw std::runtime_error(file.string() + " is not an ordinary file; choose another name.");
    constexpr unsigned permissions = 0644;  // a script that others may write is a trap, whatever the umask
    replaceFile(file, contents, Durability::powerCut, permissions);
    return file;
} catch (const ReplaceError& error) {
    // Its own words name a temporary file, which the user did not ask for.
    throw std::runtime_error(file.string() + " could not be saved: " + systemMessage(error.failure().code) +
                             ".");
}

}  // namespace

fs::path ReadingWork::saveRestoreScript(const fs::path& file) {
    return save(file, restoreScript(), *deps_.journal);
}

fs::path ReadingWork::saveReport(const fs::path& file) {
    const std::string report =
        Report::markdown(*deps_.journal, deps_.catalog, deps_.machine.osVersion.text(), systemNow(),
                         deps_.engine.driftedEntries(), lackOfChanges(*deps_.journal));
    return save(file, report, *deps_.journal);
}

fs::path ReadingWork::savePreset(const fs::path& file, const Preset& preset) {
    PresetFile::checkName(preset.name);
    return save(file, PresetFile::encode(preset), *deps_.journal);
}

}  // namespace brell
