// Everything that lies in a folder, for comparing it before and after.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

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

// The paths below the folder that differ from what everythingIn gave before.
inline std::vector<std::string> changesIn(const std::filesystem::path& folder,
                                          std::map<std::string, std::string> before) {
    std::vector<std::string> changed;
    for (const auto& [path, contents] : everythingIn(folder))
        if (const auto known = before.extract(path); known.empty() || known.mapped() != contents)
            changed.push_back(path);
    for (const auto& [path, contents] : before) changed.push_back(path + " is gone");
    return changed;
}

}  // namespace brell::testing
