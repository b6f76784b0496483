// The background task database: every login item and background job that applications have registered, as
// sfltool prints it.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "BrellCore/Support/EnumText.h"

namespace brell {

enum class BTMItemType {
    app,
    loginItem,
    legacyAgent,
    legacyDaemon,
    developer,
    dockTile,
    quicklook,
    spotlight,
    other
};
template <>
inline constexpr std::array<std::string_view, 9> enumTexts<BTMItemType>{
    "app",      "loginItem", "legacyAgent", "legacyDaemon", "developer",
    "dockTile", "quicklook", "spotlight",   "other"};

struct BTMItem {
    std::string id;  // never empty
    std::optional<std::string> name;
    std::optional<std::string> developer;
    std::optional<std::string> teamID;
    BTMItemType type = BTMItemType::other;
    bool enabled = false;  // its own switch
    bool allowed = true;   // by the user, in System Settings
    std::optional<std::string> bundleID;
    std::optional<std::string> url;  // file:///... percent-encoded, or on newer systems a plain path
    std::optional<std::string> parentID;
    std::vector<std::string> embeddedIdentifiers;

    // The id without the number and the dot that the database puts in front.
    std::string_view strippedIdentifier() const;
    bool operator==(const BTMItem&) const = default;
};

struct BTMDump {
    std::map<std::int64_t, std::vector<BTMItem>> sections;  // by user id; the items in the dump's order

    const std::vector<BTMItem>& items(std::int64_t uid) const;  // empty for a user without a section
    std::vector<BTMItem> systemItems() const;                   // those of -2, then those of 0
    bool operator==(const BTMDump&) const = default;
};

namespace BTMDumpParser {

// Nothing when the text has no section of records at all. Items before the first section, in one whose user
// can't be read, or without an identifier are left out.
std::optional<BTMDump> parse(std::string_view text);

}  // namespace BTMDumpParser

}  // namespace brell
