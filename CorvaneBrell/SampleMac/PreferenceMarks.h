// Which preferences of the sample Mac are not for the user's preference files to say, kept in one file.
#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "BrellCore/Preferences/PrefKey.h"

namespace brell {

struct PreferenceMarks {
    std::vector<PrefKey> byHost;  // set for this host alone
    std::vector<PrefKey> forced;  // set by a profile
    bool operator==(const PreferenceMarks&) const = default;
};

// root is the Mac's folder. Both raise an exception derived from std::exception for a file that can't be read
// or written or is damaged; a Mac without one gives nothing.
std::optional<PreferenceMarks> readPreferenceMarks(const std::filesystem::path& root);
void writePreferenceMarks(const std::filesystem::path& root, const PreferenceMarks& marks);

}  // namespace brell
