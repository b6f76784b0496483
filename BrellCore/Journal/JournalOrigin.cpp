#include "BrellCore/Journal/JournalOrigin.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace fs = std::filesystem;

namespace brell {

namespace {

using Version = std::array<int, 3>;

// "26.1.0", or the beginning of that; nothing for any other text.
std::optional<Version> versionIn(std::string_view text) {
    Version version{};
    const char *at = text.data(), *const end = at + text.size();
    for (int& number : version) {
        const auto [next, failed] = std::from_chars(at, end, number);
        if (failed != std::errc() || number < 0) return std::nullopt;
        if (next == end) return version;
        if (*next != '.') return std::nullopt;
        at = next + 1;
    }
    return std::nullopt;
}

bool liesIn(const fs::path& folder, const fs::path& file) {
    const fs::path inside = file.lexically_normal().lexically_relative(folder);
    return !inside.empty() && *inside.begin() != "..";
}

}  // namespace

std::vector<ForeignEntry> foreignEntries(const std::vector<JournalEntry>& entries, const fs::path& home,
                                         std::string_view macOSVersion) {
    const auto here = versionIn(macOSVersion);
    std::vector<ForeignEntry> foreign;
    for (const JournalEntry& entry : entries) {
        const auto there = versionIn(entry.macOSVersion);
        const ForeignEntry found{entry.id, entry.agent && !liesIn(home, entry.agent->plistPath),
                                 here && there && *there > *here};
        if (found.agentLiesElsewhere || found.macOSIsNewer) foreign.push_back(found);
    }
    return foreign;
}

}  // namespace brell
