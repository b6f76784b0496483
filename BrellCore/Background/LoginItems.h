// Everything that starts at login or runs in the background, in one list: what launchd knows and what the
// background task database knows, each item once.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "BrellCore/Background/AgentExplainer.h"
#include "BrellCore/Background/BTMDump.h"
#include "BrellCore/Background/LaunchAgentReader.h"

namespace brell {

// The one who can change an item; also the order of the list.
enum class LoginItemBadge { toggleable, adminOnly, appManaged };
std::string_view text(LoginItemBadge badge);

struct LoginItemRow {
    std::string id;               // unique in its list, and the same in the next one
    std::string title, subtitle;  // to be shown: in one line each, and cut where they are long
    LoginItemBadge badge;
    std::optional<LaunchAgentRecord> record;  // absent for an item that only the database knows
    std::optional<BTMItem> btm;
    AgentExplanation explanation;
    bool isCrashLooping;
    std::optional<bool> allowedInSystemSettings;  // absent when the database does not know the item
    bool isOn;
    bool operator==(const LoginItemRow&) const = default;
};

namespace LoginItemsMerger {

// The rows by badge, then title without regard to letter case, then id. uid is the user's number; btm is
// nullptr for a user who may not see the database. Takes time in proportion to the rows, apart from sorting.
std::vector<LoginItemRow> merge(const std::vector<LaunchAgentRecord>& user,
                                const std::vector<LaunchAgentRecord>& system, const BTMDump* btm,
                                std::uint32_t uid);

}  // namespace LoginItemsMerger

}  // namespace brell
