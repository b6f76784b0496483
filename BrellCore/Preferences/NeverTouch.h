// The domains and launchd labels that are never changed, whatever a catalog, a preset or a file says. Plain,
// case-sensitive comparisons of the whole text.
#pragma once

#include <array>
#include <string_view>

namespace brell::NeverTouch {

inline constexpr std::array<std::string_view, 5> domainPrefixes{
    "com.apple.security", "com.apple.LaunchServices", "com.apple.alf", "com.apple.SoftwareUpdate",
    "com.apple.screensaver"};
inline constexpr std::array<std::string_view, 1> labelPrefixes{"com.apple."};
inline constexpr std::string_view ownLabel = "com.corvane.brell";

// A protected domain, or one given as a path into a sandbox container or a preferences folder.
bool isForbiddenDomain(std::string_view domain);

// A label of the system's vendor, or our own.
bool isForbiddenLabel(std::string_view label);

// The application's own label or one below it.
bool isOwnLabel(std::string_view label);

}  // namespace brell::NeverTouch
