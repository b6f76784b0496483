// The names of the applications on this Mac.
#pragma once

#include <optional>
#include <string>

namespace brell {

// The name of the application with this bundle identifier, as its file has it; nothing when the system knows
// none, and off macOS. From any thread.
std::optional<std::string> applicationName(const std::string& bundleIdentifier);

}  // namespace brell
