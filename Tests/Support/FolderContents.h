// Everything that lies in a folder, for comparing it before and after.
#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "Tests/Support/Testing.h"

namespace brell::testing {

// By path within the folder, hidden names included: a file's bytes, "(folder)" for a folder.
inline std::map<std::string, std::string> everythingIn(const std::filesystem::path& folder) {
    std::map<std::string, std::string> everything;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        everything[entry.path().lexically_relative(folder).string()] =
            entry.is_directory() ? "(folder)" : contentsOf(entry.path());
    return everything;
}

}  // namespace brell::testing
