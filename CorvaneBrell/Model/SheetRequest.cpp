#include "CorvaneBrell/Model/SheetRequest.h"

namespace brell {

std::optional<SheetRequest> sheetRequest(const AppState& state, const std::vector<std::string>& readReport) {
    // While a change is under way, an entry that is not complete is no interrupted one.
    if (!state.interrupted.empty() && !state.recoveryDeferred && !state.changeActivity)
        return RecoveryRequest{state.interrupted, state.recoveryFailures};
    if (state.driftRequest) return *state.driftRequest;
    if (state.agentConfirm) return *state.agentConfirm;
    if (state.relaunchRequest) return *state.relaunchRequest;
    if (state.restoreRequest) return *state.restoreRequest;
    if (state.presetRequest) return *state.presetRequest;
    if (!state.presetReport.empty() && state.presetReport != readReport)
        return PresetReport{state.presetReport};
    return std::nullopt;
}

}  // namespace brell
