#include "BrellCore/Journal/OwnFiles.h"

#include <algorithm>

#include "BrellCore/Journal/JournalPlace.h"
#include "BrellCore/Journal/RestoreScript.h"
#include "BrellCore/Support/Leftovers.h"
#include "BrellCore/Support/Text.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

bool isSamePlace(const fs::path& one, const fs::path& other) {
    std::error_code unknown;
    return one == other || fs::equivalent(one, other, unknown);
}

// On most volumes of a Mac the case of letters makes no difference.
bool isOwnName(const fs::path& file) {
    const std::string journal = Journal::fileName, script(RestoreScript::fileName);
    const std::string name = lowerCaseAscii(file.filename().string());
    for (const fs::path& own :
         {fs::path(journal), fs::path(script), rebuildMark(journal), lockIn({}), historyFolder({}),
          fs::path(Journal::dryRunMarkerName), fs::path(relaunchLockName)})
        if (name == own.string()) return true;
    return name.starts_with(journal + std::string(damagedEnding)) ||
           name.starts_with(journal + std::string(beforeEnding)) ||
           name.starts_with(script + std::string(beforeEnding));
}

bool isUsualIn(const fs::path& file) {
    return isOwnName(file) || isOwnName(targetOf(file)) || file.filename() == ".DS_Store";
}

}  // namespace

bool isOfTheJournal(const fs::path& file, const Journal& journal) {
    const fs::path folder = file.parent_path();
    if (isSamePlace(folder, journal.historyDirectory())) return true;
    const std::vector<fs::path> sources = sourcesOf(journal.fileURL());
    return std::any_of(sources.begin(), sources.end(), [&](const fs::path& source) {
        return isSamePlace(file, source) || (isSamePlace(folder, source) && isOwnName(file));
    });
}

std::optional<fs::path> notOfTheJournal(const fs::path& folder) {
    for (const auto& entry : fs::directory_iterator(folder))
        if (!isUsualIn(entry.path())) return entry.path();
    return std::nullopt;
}

}  // namespace brell
