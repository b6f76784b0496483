#include "BrellCore/Background/JobProgram.h"

#include <algorithm>
#include <array>
#include <system_error>

#include "BrellCore/Background/LaunchAgentPlist.h"

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

bool isBelow(const fs::path& file, const fs::path& folder) {
    return std::mismatch(folder.begin(), folder.end(), file.begin(), file.end()).first == folder.end();
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
    const fs::path file = (root / fs::path(*program).relative_path()).lexically_normal();
    if (isBelowAny(file, home, guardedInHome) || isBelowAny(file, root, attached)) return std::nullopt;
    std::error_code unknown;
    const bool isMissing = fs::status(file, unknown).type() == fs::file_type::not_found;
    return isMissing ? program : std::nullopt;
}

}  // namespace brell
