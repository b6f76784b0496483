#include <sys/sysctl.h>

#include <array>

#include "CorvaneBrell/Platform/OperatingSystem.h"

namespace brell {

// kern.osproductversion is the version that System Settings shows; see sysctl(3).
OperatingSystemVersion currentOSVersion() {
    std::array<char, 64> text{};
    std::size_t size = text.size() - 1;
    if (::sysctlbyname("kern.osproductversion", text.data(), &size, nullptr, 0) != 0) return {};
    return releasedVersion(parseOSVersion(text.data()));
}

std::filesystem::path homeFolder() {
    const std::filesystem::path home = homeInUserDatabase();
    return home.empty() ? homeInEnvironment() : home;
}

}  // namespace brell
