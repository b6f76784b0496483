// Asks the system for the background task database, which only an administrator may see.
#pragma once

#include <sys/types.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "BrellCore/Background/BTMDump.h"
#include "BrellCore/Background/CommandRunning.h"

namespace brell {

struct AdminGroup {
    gid_t id;
    std::vector<std::string> members;  // account names
    bool operator==(const AdminGroup&) const = default;
};

// True when an account is an administrator; group is the one named "admin", if there is one.
bool isAdministrator(gid_t primaryGroup, const std::optional<AdminGroup>& group, std::string_view account);

struct BTMReader {
    CommandRunning& runner;
    std::function<bool()> isAdmin;  // asked with each dump: the answer may take a search of the accounts

    // The user who runs this process.
    static bool currentUserIsAdmin();

    // Nothing when the user is no administrator (nothing is run then) or the command does not succeed. Never
    // raises. macOS may ask for an administrator's password meanwhile: the patience is for that, where there
    // is one.
    std::optional<BTMDump> dump(const std::optional<CommandPatience>& patience = std::nullopt) const;
};

}  // namespace brell
