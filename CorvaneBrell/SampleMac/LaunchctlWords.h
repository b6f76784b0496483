// The texts that launchctl prints, laid out as it does.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "CorvaneBrell/SampleMac/LaunchdState.h"

namespace brell::LaunchctlWords {

// One service of a domain ("gui/501"). file is the whole path of its job file.
std::string service(std::string_view domain, std::string_view label, const SimulatedJob& job,
                    const JobBehaviour& behaviour, const std::filesystem::path& file);

// All services of a domain.
std::string services(std::string_view domain, const LaunchdState& state);

// The overrides, and the block that follows them.
std::string overrides(const LaunchdState& state);

// "Boot-out failed: 3: No such process", with a line feed; action is "Boot-out" or "Bootstrap".
std::string failure(std::string_view action, int code);

}  // namespace brell::LaunchctlWords
