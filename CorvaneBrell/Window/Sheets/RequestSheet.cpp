#include "CorvaneBrell/Window/Sheets/RequestSheet.h"

#include "CorvaneBrell/Window/Disclosure.h"
#include "CorvaneBrell/Window/GrowingCard.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Row.h"
#include "CorvaneBrell/Window/SelectableText.h"

namespace brell {

RequestSheet::RequestSheet(AppModel& model, QWidget* window, const QString& title, const QString& explanation,
                           void (AppModel::*cancel)())
    : Sheet(title, explanation, window), model_(model) {
    connect(this, &QDialog::rejected, this, [&model, cancel] { (model.*cancel)(); });
}

QPushButton* RequestSheet::addAnswers(const QString& confirmText, std::function<void()> confirm,
                                      const QString& cancelText) {
    addCancel(cancelText);
    QPushButton* button = addButton(confirmText);
    connect(button, &QPushButton::clicked, this, [confirm = std::move(confirm)] { confirm(); });
    const AppState& state = model_.state();
    if (const auto& reason = state.startupError ? state.startupError : state.journalError) {
        button->setEnabled(false);
        addFootnote(qt(*reason), "lock", Tone::critical);
    }
    return button;
}

QPushButton* RequestSheet::addAnswers(const QString& confirmText, void (AppModel::*confirm)(),
                                      const QString& cancelText) {
    return addAnswers(
        confirmText, [this, confirm] { std::invoke(confirm, model_); }, cancelText);
}

void RequestSheet::addNote(const QString& symbol, Tone tone, const QString& text) {
    content()->addWidget(symbolLine(symbol, tone, text, this));
}

void RequestSheet::addCard(std::size_t all, const std::function<QWidget*(std::size_t)>& makeRow) {
    if (all > 0) content()->addWidget(rowCard(all, makeRow, this));
}

QWidget* sheetRow(const std::vector<QWidget*>& parts) {
    auto* row = new QWidget;
    auto* column = new QVBoxLayout(row);
    column->setContentsMargins(14, 8, 12, 9);
    column->setSpacing(3);
    for (QWidget* part : parts) column->addWidget(part);
    return row;
}

QWidget* forExperts(const QString& title, const std::vector<std::string>& lines) {
    return new Disclosure(QObject::tr("For experts"), title,
                          [title, lines] { return keyLines(QObject::tr("Keys of %1").arg(title), lines); });
}

QWidget* keyLines(const QString& name, const std::vector<std::string>& lines) {
    auto* text = new SelectableText(name, SelectableText::Look::monospace);
    text->setLines(qt(lines));
    return text;
}

}  // namespace brell
