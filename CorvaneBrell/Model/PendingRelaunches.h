// Which tweaks wait for a relaunch of Finder or the Dock: kept in the application's own preferences, so that
// they survive quitting it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Journal/JournalEntry.h"
#include "CorvaneBrell/Model/PresetPlan.h"

namespace brell {

class PreferenceStore;

// A tweak whose keys hold something else than when its app was last started.
struct PendingRelaunch {
    std::string before;    // what the keys held then, rendered
    std::int64_t process;  // the app's number then; 0 when it did not run
    bool operator==(const PendingRelaunch&) const = default;
};
using PendingRelaunches = std::map<std::string, PendingRelaunch>;  // by tweak id

// The values of one tweak's keys in the form that is kept and compared.
std::string renderedTogether(const std::vector<StoredValue>& values);

// The effects that wait.
std::set<EffectClass> pendingEffects(const PendingRelaunches& pending, const TweakCatalog& catalog);

// The number of the app that shows such a change; 0 while it does not run.
using ProcessOf = std::function<std::int64_t(EffectClass)>;

// By tweak the values that its keys held just before a change, and hold after it, rendered; a tweak whose
// keys can't be read is missing.
struct ChangedKeys {
    const std::map<std::string, std::string>& before;
    const std::map<std::string, std::string>& now;
};

// A change waits until its keys hold again what they held when the app was last started.
void noteChange(PendingRelaunches& pending, const ChangedKeys& change, const TweakCatalog& catalog,
                const ProcessOf& processOf);

// Drop what waits no more: what an app shows that was started anew since, by a login or otherwise; what holds
// again what the app knows; what is shown by an app that was relaunched.
void dropShown(PendingRelaunches& pending, const TweakCatalog& catalog, const ProcessOf& processOf);
void dropBack(PendingRelaunches& pending, const TweakStatuses& statuses, const TweakStatusErrors& errors);
void dropEffect(PendingRelaunches& pending, const TweakCatalog& catalog, EffectClass effect);

// Gives what change makes of what was kept, and keeps it. lock names the file for which other runs of the
// program wait that do the same; it is made only where something is written, and missing in a dry run, which
// writes nothing. Raises nothing: what can't be kept comes with a sentence that says why.
std::pair<PendingRelaunches, std::string> updatePendingRelaunches(
    PreferenceStore& ownStore, const std::optional<std::filesystem::path>& lock,
    const std::function<void(PendingRelaunches&)>& change);

}  // namespace brell
