#include "CorvaneBrell/Platform/OperatingSystem.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "BrellCore/Support/FileContents.h"
#include "BrellCore/Support/PropertyList.h"

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

std::optional<OperatingSystemVersion> versionInFile(const fs::path& file) try {
    constexpr std::size_t mostBytes = 1 << 20;  // it has a few hundred
    const auto contents = readFile(file, mostBytes);
    if (!contents) return std::nullopt;
    const PlistValue root = readPropertyList(contents->bytes);
    const auto* facts = root.as<PlistDictionary>();
    const PlistValue* version = facts ? facts->find("ProductVersion") : nullptr;
    const auto* text = version ? version->as<std::string>() : nullptr;
    if (!text) return std::nullopt;
    const OperatingSystemVersion parsed = parseOSVersion(*text);
    return parsed.major > 0 ? std::optional(parsed) : std::nullopt;
} catch (const ReadError&) {
    return std::nullopt;
} catch (const PlistError&) {
    return std::nullopt;
}

OperatingSystemVersion releasedVersion(OperatingSystemVersion told) {
    if (told.major == 16) told.major = 26;
    return told;
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
