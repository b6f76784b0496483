// A look for the program that a job starts.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace brell {

struct LaunchAgentPlist;

// The path of the job's program where nothing lies there. Nothing where it lies there, and where that can't
// be told: of a name that launchd looks up, behind a folder that can't be searched, and in places that are
// not looked at, because macOS may ask the user first or a volume may not be attached. root holds the
// folders of the machine, home those of the user.
std::optional<std::string> missingProgram(const LaunchAgentPlist& job, const std::filesystem::path& root,
                                          const std::filesystem::path& home);

}  // namespace brell
