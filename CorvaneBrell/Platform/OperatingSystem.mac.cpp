#include <sys/sysctl.h>

#include <array>

#include "CorvaneBrell/Platform/OperatingSystem.h"

namespace brell {

// The file is the one of two that is never bent for older programs. kern.osproductversion, see sysctl(3), is
// what this program is told.
OperatingSystemVersion currentOSVersion() {
    if (const auto written = versionInFile("/System/Library/CoreServices/.SystemVersionPlatform.plist"))
        return *written;
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
