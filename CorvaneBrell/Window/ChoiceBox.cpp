#include "CorvaneBrell/Window/ChoiceBox.h"

#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QWheelEvent>

namespace brell {

namespace {

// Qt's own gives the value as the name, so that nobody hears what the list is for.
class ChoiceBoxAccessible final : public QAccessibleWidget {
public:
    explicit ChoiceBoxAccessible(ChoiceBox* box) : QAccessibleWidget(box, QAccessible::ComboBox) {}

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Value)
            return box()->currentIndex() < 0 ? box()->placeholderText() : box()->currentText();
        return QAccessibleWidget::text(kind);
    }
    QStringList actionNames() const override { return {showMenuAction(), pressAction()}; }
    void doAction(const QString& action) override {
        if (action == showMenuAction() || action == pressAction()) box()->showPopup();
    }

private:
    ChoiceBox* box() const { return static_cast<ChoiceBox*>(widget()); }
};

QAccessibleInterface* accessibleChoiceBox(const QString&, QObject* object) {
    auto* box = qobject_cast<ChoiceBox*>(object);
    return box ? new ChoiceBoxAccessible(box) : nullptr;
}

}  // namespace

ChoiceBox::ChoiceBox(QWidget* parent) : QComboBox(parent) {
    static const bool known = (QAccessible::installFactory(accessibleChoiceBox), true);
    Q_UNUSED(known);
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
    setMinimumHeight(28);
    setMaximumWidth(260);
    setFocusPolicy(Qt::StrongFocus);
}

void ChoiceBox::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

void ChoiceBox::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_Space:
        case Qt::Key_Return:
        case Qt::Key_Enter: showPopup(); break;
        default: event->ignore();
    }
}

}  // namespace brell
