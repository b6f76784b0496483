#include <sys/utsname.h>

#include "CorvaneBrell/Platform/OperatingSystem.h"

namespace brell {

OperatingSystemVersion currentOSVersion() {
    utsname system{};
    return ::uname(&system) == 0 ? parseOSVersion(system.release) : OperatingSystemVersion();
}

std::filesystem::path homeFolder() {
    const std::filesystem::path home = homeInEnvironment();
    return home.empty() ? homeInUserDatabase() : home;
}

}  // namespace brell
