// One function for each request of the model: a new sheet that asks it, or tells it, and belongs to the
// window.
#pragma once

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Model/SheetRequest.h"
#include "CorvaneBrell/Window/Sheet.h"

namespace brell {

// Changes and journals that were left unfinished or damaged (RecoverySheets.cpp).
Sheet* sheetFor(AppModel& model, QWidget* window, const RecoveryRequest& request);
Sheet* sheetFor(AppModel& model, QWidget* window, const RebuildRequest& request);
Sheet* sheetFor(AppModel& model, QWidget* window, const RebuildReport& report);

// The way back (RestoreSheet.cpp), and the way out of Brell (LeavingSheets.cpp).
Sheet* sheetFor(AppModel& model, QWidget* window, const RestoreRequest& request);
Sheet* sheetFor(AppModel& model, QWidget* window, const DriftRequest& request);
Sheet* sheetFor(AppModel& model, QWidget* window, const LeavingRequest& request);
Sheet* sheetFor(AppModel& model, QWidget* window, const LeavingReport& report);

// What is run or quit (CommandSheets.cpp).
Sheet* sheetFor(AppModel& model, QWidget* window, const AgentConfirmRequest& request);
Sheet* sheetFor(AppModel& model, QWidget* window, const RelaunchRequest& request);
Sheet* sheetFor(AppModel& model, QWidget* window, const TaskListRequest& request);

// Presets (PresetSheets.cpp, ExportSheet.cpp).
Sheet* sheetFor(AppModel& model, QWidget* window, const PresetRequest& request);
Sheet* sheetFor(AppModel& model, QWidget* window, const PresetReport& report);
Sheet* sheetFor(AppModel& model, QWidget* window, const ExportRequest& request);

}  // namespace brell
