#include "CorvaneBrell/Machine.h"

#include <fmt/format.h>
#include <unistd.h>

#include <stdexcept>

#include "BrellCore/Background/BTMReader.h"
#include "BrellCore/Background/ProcessCommandRunner.h"
#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Journal/Journal.h"
#include "BrellCore/Preferences/NeverTouch.h"
#include "BrellCore/Preferences/PlistFileStore.h"
#include "BrellCore/Support/Uuid.h"
#include "CorvaneBrell/Platform/UserPreferences.h"
#include "CorvaneBrell/SampleMac/SampleMac.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

constexpr double commandSeconds = 10.0;

fs::path journalDirectoryFor(const LaunchOptions& options, const fs::path& home) {
    if (options.journalDirectory) return *options.journalDirectory;
    if (options.dryRun) return throwAwayDirectory("dry-run");  // each starts from an empty journal of its own
    return Journal::defaultDirectory(home);
}

DomainSet ownDomains() {
    return {std::string(NeverTouch::ownLabel)};
}

// What the function makes of each domain of the catalog.
std::vector<fs::path> preferenceFiles(const std::function<fs::path(const std::string&)>& fileOf) {
    std::vector<fs::path> files;
    for (const std::string& domain : TweakCatalog::allowedDomains()) files.push_back(fileOf(domain));
    return files;
}

Machine thisMachine(const LaunchOptions& options) {
    const fs::path home = homeFolder();
    if (home.empty()) throw std::runtime_error("Neither HOME nor the user database names a home folder.");
    // A dry run reads what a real run would, although its journal lies elsewhere.
    const fs::path preferences =
        options.journalDirectory.value_or(Journal::defaultDirectory(home)) / "Preferences";
    return {home,
            "/",
            currentOSVersion(),
            ::getuid(),
            BTMReader::currentUserIsAdmin,
            journalDirectoryFor(options, home),
            preferenceFiles(
                [&](const std::string& domain) { return userPreferenceFile(home, preferences, domain); }),
            userPreferences(preferences, TweakCatalog::allowedDomains()),
            userPreferences(preferences, ownDomains()),
            std::make_unique<ProcessCommandRunner>(commandSeconds)};
}

Machine sampleMachine(const LaunchOptions& options) {
    const SampleMac sample(*options.sampleMac);
    return {sample.home(),
            sample.systemRoot(),
            SampleMac::osVersion,
            SampleMac::uid,
            [] { return SampleMac::isAdmin; },
            journalDirectoryFor(options, sample.home()),
            preferenceFiles([&](const std::string& domain) {
                return PlistFileStore::fileOf(sample.preferences(), domain);
            }),
            sample.openPreferences(),
            std::make_unique<PlistFileStore>(sample.preferences(), ownDomains()),
            sample.openTools()};
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
    return options.sampleMac ? sampleMachine(options) : thisMachine(options);
} catch (const fs::filesystem_error& error) {
    throw std::runtime_error("The folder " + error.path1().string() +
                             " could not be used: " + error.code().message() + ".");
}

}  // namespace brell
