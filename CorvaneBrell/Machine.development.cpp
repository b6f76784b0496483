#include "CorvaneBrell/Machine.h"
#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Journal/Journal.h"
#include "BrellCore/Preferences/NeverTouch.h"
#include "CorvaneBrell/SampleMac/SampleMac.h"
#include "CorvaneBrell/SampleMac/SamplePast.h"
#include "CorvaneBrell/SampleMac/SimulatedApplications.h"

namespace fs = std::filesystem;

namespace brell {

std::optional<Machine> standInFor(const LaunchOptions& options) {
    if (!options.sampleMac) return std::nullopt;
    const SampleMac sample(*options.sampleMac);
    std::vector<fs::path> files;
    for (const std::string& domain : TweakCatalog::allowedDomains())
        files.push_back(PlistFileStore::fileOf(sample.preferences(), domain));
    return Machine{
        sample.home(),
        sample.systemRoot(),
        SampleMac::osVersion,
        SampleMac::uid,
        [] { return SampleMac::isAdmin; },
        {},
        std::move(files),
        sample.openPreferences(),
        std::make_unique<PlistFileStore>(sample.preferences(), DomainSet{std::string(NeverTouch::ownLabel)}),
        sample.openTools(),
        SampleMac::applicationName};
}

void makePastFor(const LaunchOptions& options) {
    if (!options.sampleMac || !SampleMac::isNew(*options.sampleMac)) return;
    const SampleMac sample(*options.sampleMac);
    makePast(sample, options.journalDirectory.value_or(Journal::defaultDirectory(sample.home())),
             systemNow());
}

std::unique_ptr<RunningApplications> applicationsFor(const LaunchOptions& options, MainLoop& loop) {
    if (options.sampleMac) return std::make_unique<SimulatedApplications>(loop);
    return systemApplications();
}

}  // namespace brell
