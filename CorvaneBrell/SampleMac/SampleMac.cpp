#include "CorvaneBrell/SampleMac/SampleMac.h"

#include <chrono>
#include <stdexcept>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Support/FileLock.h"
#include "CorvaneBrell/SampleMac/Furniture.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

using namespace std::chrono_literals;

fs::path madeWithoutLinks(const fs::path& folder) {
    fs::create_directories(folder);
    return fs::canonical(folder);
}

}  // namespace

SampleMac::SampleMac(const fs::path& folder) : folder_(madeWithoutLinks(folder)) {
    // launchd's state is the last that is added, so with it everything is there.
    const auto isFurnished = [&] {
        return fs::exists(preferences()) && fs::exists(SimulatedLaunchd::stateFile(folder_));
    };
    if (isFurnished()) return;
    const auto lock = FileLock::acquire(folder_ / ".furnishing.lock", 30s);
    if (!lock) throw std::runtime_error(folder_.string() + " is being furnished by another process.");
    if (isFurnished()) return;
    if (!fs::exists(preferences())) {
        PlistFileStore store(preferences(), TweakCatalog::allowedDomains());
        SampleFurniture::addPreferences(store);
    }
    SampleFurniture::addVolumes(folder_);
    SampleFurniture::addTaskDump(folder_);
    SampleFurniture::addJobs(folder_, home());
}

std::unique_ptr<PlistFileStore> SampleMac::openPreferences() const {
    auto store = std::make_unique<PlistFileStore>(preferences(), TweakCatalog::allowedDomains());
    const TweakCatalog catalog(home().string());
    for (const Tweak& tweak : catalog.all())
        for (const Write& write : tweak.writes)
            if (write.systemDefault) store->registerSystemDefault(*write.systemDefault, write.key);
    return store;
}

std::unique_ptr<SimulatedTools> SampleMac::openTools() const {
    return std::make_unique<SimulatedTools>(folder_, uid);
}

}  // namespace brell
