#include "CorvaneBrell/Machine.h"

namespace brell {

std::optional<Machine> standInFor(const LaunchOptions&) {
    return std::nullopt;
}

void makePastFor(const LaunchOptions&) {}

std::unique_ptr<RunningApplications> applicationsFor(const LaunchOptions&, MainLoop&) {
    return systemApplications();
}

}  // namespace brell
