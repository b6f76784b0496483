#include "CorvaneBrell/Model/SheetRequest.h"

#include <algorithm>
#include <functional>

namespace brell {

namespace {

// launchd's part, for agents that are all led to the same.
std::string_view wordsFor(const AgentTarget& target) {
    if (target == AgentTarget{true, false}) return "launchd stops it now and starts it no more at login.";
    if (target == AgentTarget{true, true})
        return "launchd starts it no more at login. "
               "It stays loaded until you log out, as it was before Brell turned it on.";
    if (target == AgentTarget{false, true}) return "launchd starts it again, now and at each login.";
    return "launchd starts it again at each login, but not now: it was not loaded before Brell turned it "
           "off.";
}

// While a change is under way, an entry that is not complete is no interrupted one; and what runs commands
// waits until they can be shown.
bool asksForRecovery(const AppState& state) {
    if (state.interrupted.empty() || state.recoveryDeferred || state.changeActivity) return false;
    return std::all_of(state.interrupted.begin(), state.interrupted.end(), [&](const JournalEntry& entry) {
        return !entry.agent || state.recoveryCommands.contains(entry.id);
    });
}

}  // namespace

std::string AgentConfirmRequest::explanation() const {
    const bool isSame =
        std::adjacent_find(targets.begin(), targets.end(), std::not_equal_to<>()) == targets.end();
    std::string words = "Brell runs exactly these commands: ";
    if (isSame && !targets.empty())
        words += wordsFor(targets.front());
    else
        words += turningOn ? "launchd starts them again at each login, and now those that were loaded before "
                             "Brell turned them off."
                           : "launchd starts them no more at login, and stops now those that were not loaded "
                             "before Brell turned them on.";
    return turningOn ? words : words + " The file that describes it stays as it is.";
}

std::string DriftRequest::title() const {
    return entries.size() == 1 ? "This setting was changed outside Brell"
                               : "Some settings were changed outside Brell";
}

std::string DriftRequest::explanation() const {
    if (!isAboutOne()) {
        const std::string ask =
            "These keys no longer hold the value Brell wrote. Tick the ones to restore "
            "anyway; the others are left as they are.";
        return isEverything ? ask + " Everything else Brell changed is restored." : ask;
    }
    return "The key no longer holds the value Brell wrote. Restoring overwrites what is there now with the "
           "original Brell saved; cancelling leaves everything exactly as it is.";
}

std::optional<SheetRequest> sheetRequest(const AppState& state, const std::vector<std::string>& readReport) {
    if (state.leavingReport) return *state.leavingReport;
    if (state.rebuildReport) return *state.rebuildReport;
    if (state.rebuildRequest) return *state.rebuildRequest;
    if (asksForRecovery(state))
        return RecoveryRequest{state.interrupted, state.recoveryFailures, state.recoveryCommands};
    if (state.driftRequest) return *state.driftRequest;
    if (state.agentConfirm) return *state.agentConfirm;
    if (state.relaunchRequest) return *state.relaunchRequest;
    if (state.taskListRequest) return *state.taskListRequest;
    if (state.restoreRequest) return *state.restoreRequest;
    if (state.presetRequest) return *state.presetRequest;
    if (state.exportRequest) return *state.exportRequest;
    // What is restored on the way is shown once it is done.
    if (state.leavingRequest && !state.changeActivity) return *state.leavingRequest;
    if (!state.presetReport.empty() && state.presetReport != readReport)
        return PresetReport{state.presetReport};
    return std::nullopt;
}

}  // namespace brell
