// The one question that the window asks at a time.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "CorvaneBrell/Model/AppState.h"

namespace brell {

// Changes that an earlier run left unfinished.
struct RecoveryRequest {
    std::vector<JournalEntry> entries;
    std::vector<std::string> failures;  // of the last attempt to put them back
    RecoveryCommands commands;          // of every agent among them
    bool operator==(const RecoveryRequest&) const = default;
};

// The result of a preset; nothing is left to decide.
struct PresetReport {
    std::vector<std::string> lines;
    bool operator==(const PresetReport&) const = default;
};

using SheetRequest = std::variant<RebuildReport, RebuildRequest, RecoveryRequest, DriftRequest,
                                  AgentConfirmRequest, RelaunchRequest, TaskListRequest, RestoreRequest,
                                  PresetRequest, ExportRequest, LeavingRequest, LeavingReport, PresetReport>;

// The question that waits and goes before the others: recovery first, reports last. readReport is the
// preset's report that the user has read already.
std::optional<SheetRequest> sheetRequest(const AppState& state, const std::vector<std::string>& readReport);

}  // namespace brell
