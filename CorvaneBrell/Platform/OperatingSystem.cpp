#include "CorvaneBrell/Platform/OperatingSystem.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace fs = std::filesystem;

namespace brell {

namespace {

fs::path absoluteFolder(std::string path) {
    while (path.size() > 1 && path.ends_with('/')) path.pop_back();
    return path.starts_with("/") ? fs::path(path) : fs::path();
}

}  // namespace

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

fs::path homeInEnvironment() {
    const char* named = std::getenv("HOME");
    return named ? absoluteFolder(named) : fs::path();
}

fs::path homeInUserDatabase() {
    const passwd* user = ::getpwuid(::getuid());
    return user ? absoluteFolder(user->pw_dir) : fs::path();
}

}  // namespace brell
