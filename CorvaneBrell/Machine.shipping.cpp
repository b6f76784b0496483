#include "CorvaneBrell/Machine.h"

#include "BrellCore/Preferences/PreferenceStore.h"  // a Machine owns two

namespace brell {

std::optional<Machine> standInFor(const LaunchOptions&) {
    return std::nullopt;
}

void makePastFor(const LaunchOptions&) {}

std::unique_ptr<RunningApplications> applicationsFor(const LaunchOptions&, MainLoop&) {
    return systemApplications();
}

}  // namespace brell
