#include "CorvaneBrell/Window/SheetPresenter.h"

#include <QEvent>
#include <QTimer>

#include "CorvaneBrell/Window/Sheets/AgentConfirmSheet.h"
#include "CorvaneBrell/Window/Sheets/DriftSheet.h"
#include "CorvaneBrell/Window/Sheets/PresetResultSheet.h"
#include "CorvaneBrell/Window/Sheets/PresetSheet.h"
#include "CorvaneBrell/Window/Sheets/RecoverySheet.h"
#include "CorvaneBrell/Window/Sheets/RelaunchSheet.h"
#include "CorvaneBrell/Window/Sheets/RestoreSheet.h"

namespace brell {

namespace {

struct SheetFor {
    AppModel& model;
    QWidget* window;

    Sheet* operator()(const RecoveryRequest& request) { return new RecoverySheet(model, window, request); }
    Sheet* operator()(const DriftRequest& request) { return new DriftSheet(model, window, request); }
    Sheet* operator()(const AgentConfirmRequest& request) {
        return new AgentConfirmSheet(model, window, request);
    }
    Sheet* operator()(const RelaunchRequest& request) { return new RelaunchSheet(model, window, request); }
    Sheet* operator()(const RestoreRequest& request) { return new RestoreSheet(model, window, request); }
    Sheet* operator()(const PresetRequest& request) { return new PresetSheet(model, window, request); }
    Sheet* operator()(const PresetReport& report) { return new PresetResultSheet(window, report); }
};

}  // namespace

SheetPresenter::SheetPresenter(AppModel& model, QWidget* window)
    : QObject(window), model_(model), window_(window) {
    window->installEventFilter(this);
}

bool SheetPresenter::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show) QTimer::singleShot(0, this, &SheetPresenter::refresh);
    return QObject::eventFilter(watched, event);
}

void SheetPresenter::refresh() {
    if (!window_->isVisible()) return;  // a sheet without its window would be a window of its own
    const AppState& state = model_.state();
    if (state.presetReport.empty()) readReport_.clear();
    std::optional<SheetRequest> wanted = sheetRequest(state, readReport_);
    if (wanted == shown_) return;
    close();
    shown_ = std::move(wanted);
    if (shown_) open();
}

// Hidden, not rejected: the request may be answered already, and another one may stand in its place.
void SheetPresenter::close() {
    shown_.reset();
    if (!sheet_) return;
    sheet_->disconnect();
    sheet_->hide();
    sheet_->deleteLater();  // it may be the one whose click is being handled
    sheet_ = nullptr;
}

void SheetPresenter::open() {
    sheet_ = std::visit(SheetFor{model_, window_}, *shown_);
    connect(sheet_, &QDialog::rejected, this, [this] {
        if (shown_ && std::holds_alternative<PresetReport>(*shown_))
            readReport_ = model_.state().presetReport;
        refresh();
    });
    sheet_->open();
}

}  // namespace brell
