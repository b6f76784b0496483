#include "BrellCore/Background/JobProgram.h"

#include <algorithm>
#include <array>
#include <system_error>

#include "BrellCore/Background/LaunchAgentPlist.h"
#include "BrellCore/Support/Text.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

constexpr std::array guardedInHome{"Desktop",
                                   "Documents",
                                   "Downloads",
                                   "Library/CloudStorage",
                                   "Library/Containers",
                                   "Library/Group Containers",
                                   "Library/Mobile Documents"};
constexpr std::array attached{"Volumes", "Network"};

// Also in another case: most of a Mac's disks take that for the same.
bool isBelow(const fs::path& file, const fs::path& folder) {
    const fs::path one = lowerCaseAscii(folder.string()), other = lowerCaseAscii(file.string());
    return std::mismatch(one.begin(), one.end(), other.begin(), other.end()).first == one.end();
}

template <std::size_t count>
bool isBelowAny(const fs::path& file, const fs::path& above, const std::array<const char*, count>& folders) {
    return std::any_of(folders.begin(), folders.end(),
                       [&](const char* folder) { return isBelow(file, above / folder); });
}

}  // namespace

std::optional<std::string> missingProgram(const LaunchAgentPlist& job, const fs::path& root,
                                          const fs::path& home) {
    const auto program = job.executable();
    if (!program || !program->starts_with('/')) return std::nullopt;
    const fs::path file = root / fs::path(*program).relative_path();
    const fs::path place = file.lexically_normal();
    if (isBelowAny(place, home, guardedInHome) || isBelowAny(place, root, attached)) return std::nullopt;
    std::error_code unknown;
    const bool isMissing = fs::status(file, unknown).type() == fs::file_type::not_found;
    return isMissing ? program : std::nullopt;
}

}  // namespace brell
