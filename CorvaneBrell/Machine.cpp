#include "CorvaneBrell/Machine.h"

#include <fmt/format.h>
#include <unistd.h>

#include <stdexcept>

#include "BrellCore/Background/BTMReader.h"
#include "BrellCore/Background/ProcessCommandRunner.h"
#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Journal/Journal.h"
#include "BrellCore/Preferences/NeverTouch.h"
#include "BrellCore/Preferences/PreferenceStore.h"
#include "BrellCore/Support/Uuid.h"
#include "CorvaneBrell/Platform/UserPreferences.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

constexpr double commandSeconds = 10.0;

fs::path journalDirectoryFor(const LaunchOptions& options, const fs::path& home) {
    if (options.journalDirectory) return *options.journalDirectory;
    if (options.dryRun) return throwAwayDirectory("dry-run");  // each starts from an empty journal of its own
    return Journal::defaultDirectory(home);
}

Machine thisMachine(const LaunchOptions& options) {
    const fs::path home = homeFolder();
    if (home.empty()) throw std::runtime_error("Neither HOME nor the user database names a home folder.");
    // A dry run reads what a real run would, although its journal lies elsewhere.
    const fs::path preferences =
        options.journalDirectory.value_or(Journal::defaultDirectory(home)) / "Preferences";
    std::vector<fs::path> files;
    for (const std::string& domain : TweakCatalog::allowedDomains())
        files.push_back(userPreferenceFile(home, preferences, domain));
    return {home,
            "/",
            currentOSVersion(),
            ::getuid(),
            BTMReader::currentUserIsAdmin,
            {},
            std::move(files),
            userPreferences(preferences, TweakCatalog::allowedDomains()),
            userPreferences(preferences, {std::string(NeverTouch::ownLabel)}),
            std::make_unique<ProcessCommandRunner>(commandSeconds),
            {}};
}

}  // namespace

fs::path throwAwayDirectory(std::string_view purpose) {
    std::error_code failed;
    const fs::path folder = fs::temp_directory_path(failed);
    if (failed)
        throw std::runtime_error(
            "The folder for temporary files, TMPDIR, could not be used: " + failed.message() + ".");
    return folder / fmt::format("corvane-brell-{}-{}", purpose, Uuid::random().text());
}

Machine machineFor(const LaunchOptions& options) try {
    std::optional<Machine> standIn = standInFor(options);
    Machine machine = standIn ? std::move(*standIn) : thisMachine(options);
    machine.journalDirectory = journalDirectoryFor(options, machine.home);
    return machine;
} catch (const fs::filesystem_error& error) {
    throw std::runtime_error("The folder " + error.path1().string() +
                             " could not be used: " + error.code().message() + ".");
}

}  // namespace brell
