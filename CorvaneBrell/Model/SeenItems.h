// The login items that the user has seen, so that those that came since can be told.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "BrellCore/Background/LoginItems.h"

namespace brell {

using NameSet = std::set<std::string>;

// Each nothing as long as such a list was never seen whole: then nothing is new.
struct SeenItems {
    std::optional<NameSet> jobs;   // the files of launchd with their labels
    std::optional<NameSet> tasks;  // what macOS's own list of background items has

    bool isNew(const LoginItemRow& row) const;
    // A list that was never seen before: new is what comes after now.
    void beginWith(const SeenItems& now);
    // The names in this whole list, which may be without macOS's own.
    static SeenItems in(const std::vector<LoginItemRow>& rows, bool withTasks);
    bool operator==(const SeenItems&) const = default;
};

}  // namespace brell
