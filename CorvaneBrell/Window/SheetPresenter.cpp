#include "CorvaneBrell/Window/SheetPresenter.h"

#include <QEvent>
#include <QTimer>
#include <algorithm>

namespace brell {

SheetPresenter::SheetPresenter(AppModel& model, QWidget* window)
    : QObject(window), model_(model), window_(window) {
    window->installEventFilter(this);
}

bool SheetPresenter::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show) QTimer::singleShot(0, this, &SheetPresenter::refresh);
    if (event->type() == QEvent::Move || event->type() == QEvent::Resize) place();
    return QObject::eventFilter(watched, event);
}

void SheetPresenter::refresh() {
    if (!window_->isVisible()) return;  // a sheet without its window would be a window of its own
    const AppState& state = model_.state();
    if (state.presetReport.empty()) readReport_.clear();
    std::optional<SheetRequest> wanted = sheetRequest(state, readReport_);
    // What can't be confirmed any more, or again, is asked anew.
    if (wanted == shown_ && wasLocked_ == isLocked(state)) {
        if (sheet_) sheet_->refresh();
        return;
    }
    wasLocked_ = isLocked(state);
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
    sheet_ = makeSheet(model_, window_, *shown_);
    connect(sheet_, &QDialog::rejected, this, [this] {
        if (shown_ && std::holds_alternative<PresetReport>(*shown_))
            readReport_ = model_.state().presetReport;
        refresh();
    });
    sheet_->open();
    place();
}

// A sheet hangs from its window. Where the system does not know that, one that is opened before the window
// has its place on the screen would stay where it was.
void SheetPresenter::place() {
#ifndef Q_OS_MACOS
    constexpr int leastDrop = 24;
    if (!sheet_) return;
    const QRect window = window_->geometry();
    const int drop = std::max(leastDrop, (window.height() - sheet_->height()) / 3);
    sheet_->move(window.left() + (window.width() - sheet_->width()) / 2, window.top() + drop);
#endif
}

}  // namespace brell
