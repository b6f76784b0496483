// The lines at the foot of the window, whatever page is shown.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "CorvaneBrell/Model/AppState.h"

namespace brell {

// In the order of urgency.
enum class NoticeKind {
    journal,         // it can't be read any more
    damagedJournal,  // that is why
    olderJournal,    // it lacks changes that its restore script undoes
    error,           // of the last action
    script,          // could not be written, or a copy was kept; the change was made
    failedRecovery,  // of interrupted changes
    incompleteUndo,
    failedRelaunch,
    warning,  // what could stand in the way of a change
    interrupted,
    macOSUpdate,  // after which changes no longer hold
    relaunch,
    dryRun,
    activity,
    done
};

struct Notice {
    NoticeKind kind;
    std::string words;
    bool operator==(const Notice&) const = default;
};

// The lines that stay until they are dealt with, the most urgent first. Of a journal that could not be opened
// at the start nothing is told here.
std::vector<Notice> standingNotices(const AppState& state, const TweakCatalog& catalog,
                                    const std::optional<std::string>& whyNothingReal);

// The line about the work under way.
std::optional<Activity> activityOf(const AppState& state);

// The outcome of the last undo and the last relaunch, where everything went well.
std::vector<Notice> doneNotices(const AppState& state);

// Questions, and news of something that went wrong: a window that is about to close stays open for new ones.
std::set<std::string> newsToStayFor(const AppState& state);

// Why an active change can't be put back, as far as that was read; nothing of any other.
std::optional<std::string> refusalOf(const Uuid& entryID, const AppState& state);

// The titles of the tweaks that wait for this effect.
std::vector<std::string> waitingTitles(const AppState& state, const TweakCatalog& catalog,
                                       EffectClass effect);

// "2 apps wait for a relaunch: 24 changes"; empty when none does.
std::string relaunchText(const AppState& state, const TweakCatalog& catalog);

// "Restoring changes: 3 of 12"
std::string activityText(const Activity& activity);

}  // namespace brell
