// The operating system's words about itself and the user.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace brell {

struct OperatingSystemVersion {
    int major = 0;
    int minor = 0;
    int patch = 0;

    std::string text() const;  // "26.1.0"
    bool operator==(const OperatingSystemVersion&) const = default;
};

// Of the running system; off macOS of its kernel. A part that can't be read counts as 0.
OperatingSystemVersion currentOSVersion();

// The numbers at the start of a text such as "26.1" or "6.1.0-18-amd64".
OperatingSystemVersion parseOSVersion(const std::string& text);

// The version that macOS wrote down about itself in this property list: the true version, whatever a program
// is told about it. Nothing when the file does not say.
std::optional<OperatingSystemVersion> versionInFile(const std::filesystem::path& file);

// The true version behind one told by macOS: the release after 15 is 26, and programs made with older tools
// are told that it is 16.
OperatingSystemVersion releasedVersion(OperatingSystemVersion told);

// The user's home folder, an absolute path without a slash at its end; empty when nothing names one. On macOS
// the user database comes first, because preferences and launchd belong to the user, whatever HOME says;
// elsewhere HOME does.
std::filesystem::path homeFolder();

// The folder that each of the two names; empty when it names no absolute path.
std::filesystem::path homeInEnvironment();
std::filesystem::path homeInUserDatabase();

}  // namespace brell
