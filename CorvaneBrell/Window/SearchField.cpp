#include "CorvaneBrell/Window/SearchField.h"

#include <QAction>
#include <QKeyEvent>
#include <QToolButton>

#include "CorvaneBrell/Window/Symbol.h"

namespace brell {

namespace {

// Esc clears it, before it means anything else to the window.
class SearchField final : public QLineEdit {
protected:
    bool event(QEvent* event) override {
        const bool isAsked = event->type() == QEvent::ShortcutOverride;
        const bool isPressed = event->type() == QEvent::KeyPress;
        const bool isEscape =
            (isAsked || isPressed) && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape;
        if (!isEscape || text().isEmpty()) return QLineEdit::event(event);
        if (isPressed) clear();
        event->accept();
        return true;
    }
};

}  // namespace

QLineEdit* searchField(const QString& placeholder, const QString& name) {
    auto* field = new SearchField;
    field->setPlaceholderText(placeholder);
    field->setAccessibleName(name);
    field->setClearButtonEnabled(true);
    for (QToolButton* clear : field->findChildren<QToolButton*>())
        clear->setAccessibleName(QLineEdit::tr("Clear: %1").arg(name));
    field->addAction(symbolIcon("magnifyingglass"), QLineEdit::LeadingPosition)->setText(placeholder);
    field->setMinimumHeight(28);
    return field;
}

}  // namespace brell
