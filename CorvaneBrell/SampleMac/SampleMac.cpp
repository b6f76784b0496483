#include "CorvaneBrell/SampleMac/SampleMac.h"

#include <map>
#include <stdexcept>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Support/DiskFlush.h"
#include "CorvaneBrell/SampleMac/PreferenceMarks.h"
#include "CorvaneBrell/SampleMac/SampleContents.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

// Whatever else lies there already is not to be mixed with what a sample Mac holds.
void checkCanBeSampleMac(const fs::path& folder) {
    if (SampleMac::isNew(folder) || SampleContents::hasBegun(folder)) return;
    throw std::runtime_error("The folder " + folder.string() +
                             " is no sample Mac and not empty, so that none is made in it.");
}

fs::path madeWithoutLinks(const fs::path& folder) try {
    checkCanBeSampleMac(folder);
    if (const std::error_code failed = createFolders(folder)) throw fs::filesystem_error("", folder, failed);
    return fs::canonical(folder);
} catch (const fs::filesystem_error& error) {
    throw std::runtime_error("The folder " + folder.string() +
                             " could not be used: " + error.code().message() + ".");
}

}  // namespace

std::optional<std::string> SampleMac::applicationName(const std::string& bundleIdentifier) {
    static const std::map<std::string, std::string> names{{"com.google.Chrome", "Google Chrome"},
                                                          {"io.verdigris.app", "Verdigris Relay"}};
    const auto known = names.find(bundleIdentifier);
    return known == names.end() ? std::nullopt : std::optional(known->second);
}

bool SampleMac::isNew(const fs::path& folder) {
    std::error_code unknown;
    return !fs::exists(folder, unknown) || fs::is_empty(folder, unknown);
}

SampleMac::SampleMac(const fs::path& folder) : folder_(madeWithoutLinks(folder)) {
    // launchd's state is the last that is added, so with it everything is there.
    const auto isComplete = [&] {
        return fs::exists(preferences()) && fs::exists(SimulatedLaunchd::stateFile(folder_));
    };
    if (isComplete()) return;
    const FileLock lock = SampleContents::lock(folder_);
    if (isComplete()) return;
    if (!fs::exists(preferences())) {
        PlistFileStore store(preferences(), TweakCatalog::allowedDomains());
        SampleContents::addPreferences(store);
    }
    SampleContents::addVolumes(folder_);
    SampleContents::addTaskDump(folder_);
    SampleContents::addJobs(folder_, home());
}

std::unique_ptr<PlistFileStore> SampleMac::openPreferences() const {
    auto store = std::make_unique<PlistFileStore>(preferences(), TweakCatalog::allowedDomains());
    const TweakCatalog catalog(home().string());
    for (const Tweak& tweak : catalog.all())
        for (const Write& write : tweak.writes)
            if (write.systemDefault) store->registerSystemDefault(*write.systemDefault, write.key);
    if (const auto marks = readPreferenceMarks(folder_)) {
        for (const PrefKey& key : marks->byHost) store->markByHost(key);
        for (const PrefKey& key : marks->forced) store->markForced(key);
    }
    return store;
}

std::unique_ptr<SimulatedTools> SampleMac::openTools() const {
    return std::make_unique<SimulatedTools>(folder_, uid);
}

}  // namespace brell
