// A sheet that answers a request of the model: one button goes on, every other way out cancels.
#pragma once

#include <functional>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Window/Sheet.h"

namespace brell {

// It is the model that ends the request, and the presenter closes the sheet then.
class RequestSheet : public Sheet {
    Q_OBJECT
public:
    // cancel is called once, when the sheet is left by Cancel, the Escape key or the close box.
    RequestSheet(AppModel& model, QWidget* window, const QString& title, const QString& explanation,
                 void (AppModel::*cancel)());

    AppModel& model() { return model_; }

    // Cancel, which is the default key, and the button that goes on. Where nothing can be changed that one
    // stays disabled, with the reason in plain sight.
    QPushButton* addAnswers(const QString& confirmText, std::function<void()> confirm,
                            const QString& cancelText = tr("Cancel"));
    QPushButton* addAnswers(const QString& confirmText, void (AppModel::*confirm)(),
                            const QString& cancelText = tr("Cancel"));

    // A line of plain text with its symbol.
    void addNote(const QString& symbol, Tone tone, const QString& text);
    // A card with a row for each of so many, made when it is shown.
    void addCard(std::size_t all, const std::function<QWidget*(std::size_t)>& makeRow);

private:
    AppModel& model_;
};

// A row of a card: its parts below one another.
QWidget* sheetRow(const std::vector<QWidget*>& parts);
// Keys or commands, a line each, to read, select and copy.
QWidget* keyLines(const QString& name, const std::vector<std::string>& lines);
// The same of the keys of what has this title, closed at first.
QWidget* forExperts(const QString& title, const std::vector<std::string>& lines);

}  // namespace brell
