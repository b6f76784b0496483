// Which tweaks wait for a relaunch of Finder or the Dock: kept in the application's own preferences, so that
// they survive quitting it.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "BrellCore/Preferences/PrefValue.h"

namespace brell {

class PreferenceStore;

struct KeptRelaunch {
    std::string before;    // what the tweak's keys held when the app was last started, rendered
    std::int64_t process;  // the app's number then; 0 when it did not run
    bool operator==(const KeptRelaunch&) const = default;
};
using KeptRelaunches = std::map<std::string, KeptRelaunch>;  // by tweak id

// What the keys of one tweak hold, in the form that is kept and compared.
std::string renderedTogether(const std::vector<StoredValue>& values);

// Never raises: what can't be read was never kept.
KeptRelaunches readPendingRelaunches(PreferenceStore& ownStore);

// Writes only when something differs. Raises StoreError.
void writePendingRelaunches(const KeptRelaunches& pending, PreferenceStore& ownStore);

}  // namespace brell
