#include "CorvaneBrell/Platform/OperatingSystem.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace fs = std::filesystem;

namespace brell {

std::string OperatingSystemVersion::text() const {
    return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(patch);
}

OperatingSystemVersion parseOSVersion(const std::string& text) {
    OperatingSystemVersion version;
    std::sscanf(text.c_str(), "%9d.%9d.%9d", &version.major, &version.minor, &version.patch);
    return version;
}

OperatingSystemVersion releasedVersion(OperatingSystemVersion reported) {
    if (reported.major == 16) reported.major = 26;
    return reported;
}

fs::path homeFolder() {
    std::string home;
    if (const char* named = std::getenv("HOME")) home = named;
    if (const passwd* user = home.starts_with("/") ? nullptr : ::getpwuid(::getuid())) home = user->pw_dir;
    while (home.size() > 1 && home.ends_with('/')) home.pop_back();
    return home;
}

}  // namespace brell
