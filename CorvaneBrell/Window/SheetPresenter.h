// Opens the sheet of the model's most important request, and closes it when the request is gone.
#pragma once

#include <QObject>
#include <QPointer>
#include <optional>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Model/SheetRequest.h"
#include "CorvaneBrell/Window/Sheet.h"

namespace brell {

// The sheet that asks this; it belongs to the window. Every sheet knows the window's widgets, and none of
// them knows a sheet.
Sheet* makeSheet(AppModel& model, QWidget* window, const SheetRequest& request);

// The model must outlive the presenter, which belongs to the window.
class SheetPresenter final : public QObject {
    Q_OBJECT
public:
    SheetPresenter(AppModel& model, QWidget* window);

    // To be called when the model's state has changed. While the window is hidden nothing is opened.
    void refresh();
    // The sheet that is open; nullptr when none is.
    Sheet* current() const { return sheet_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void close();
    void open();
    void place();

    AppModel& model_;
    QWidget* window_;
    std::optional<SheetRequest> shown_;
    bool wasLocked_ = false;
    QPointer<Sheet> sheet_;
    std::vector<std::string> readReport_;  // the preset's, until the next one
};

}  // namespace brell
