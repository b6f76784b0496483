// Which sheet asks which request.

#include "CorvaneBrell/Window/SheetPresenter.h"
#include "CorvaneBrell/Window/Sheets/AgentConfirmSheet.h"
#include "CorvaneBrell/Window/Sheets/ExportSheet.h"
#include "CorvaneBrell/Window/Sheets/LeavingSheet.h"
#include "CorvaneBrell/Window/Sheets/PresetResultSheet.h"
#include "CorvaneBrell/Window/Sheets/PresetSheet.h"
#include "CorvaneBrell/Window/Sheets/RebuildSheet.h"
#include "CorvaneBrell/Window/Sheets/RecoverySheet.h"
#include "CorvaneBrell/Window/Sheets/RelaunchSheet.h"
#include "CorvaneBrell/Window/Sheets/RestoreSheet.h"
#include "CorvaneBrell/Window/Sheets/TaskListSheet.h"

namespace brell {

namespace {

struct SheetFor {
    AppModel& model;
    QWidget* window;

    Sheet* operator()(const RebuildReport& report) { return new RebuildReportSheet(model, window, report); }
    Sheet* operator()(const RebuildRequest& request) { return new RebuildSheet(model, window, request); }
    Sheet* operator()(const RecoveryRequest& request) { return new RecoverySheet(model, window, request); }
    Sheet* operator()(const DriftRequest& request) { return new RestoreSheet(model, window, request); }
    Sheet* operator()(const AgentConfirmRequest& request) {
        return new AgentConfirmSheet(model, window, request);
    }
    Sheet* operator()(const RelaunchRequest& request) { return new RelaunchSheet(model, window, request); }
    Sheet* operator()(const TaskListRequest&) { return new TaskListSheet(model, window); }
    Sheet* operator()(const RestoreRequest& request) { return new RestoreSheet(model, window, request); }
    Sheet* operator()(const PresetRequest& request) { return new PresetSheet(model, window, request); }
    Sheet* operator()(const ExportRequest& request) { return new ExportSheet(model, window, request); }
    Sheet* operator()(const LeavingRequest& request) { return new LeavingSheet(model, window, request); }
    Sheet* operator()(const LeavingReport& report) { return new LeavingReportSheet(window, report); }
    Sheet* operator()(const PresetReport& report) { return new PresetResultSheet(window, report); }
};

}  // namespace

Sheet* makeSheet(AppModel& model, QWidget* window, const SheetRequest& request) {
    return std::visit(SheetFor{model, window}, request);
}

}  // namespace brell
