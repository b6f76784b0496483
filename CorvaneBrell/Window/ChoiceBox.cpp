#include "CorvaneBrell/Window/ChoiceBox.h"

#include <QAbstractItemView>
#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QWheelEvent>
#include <algorithm>

#include "CorvaneBrell/Window/RowLayout.h"

namespace brell {

namespace {

// Qt's own gives the value as the name, so that nobody hears what the list is for. The systems' bridges ask
// for the value through its interface, some for the text.
class ChoiceBoxAccessible final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit ChoiceBoxAccessible(ChoiceBox* box) : QAccessibleWidget(box, QAccessible::ComboBox) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QVariant currentValue() const override { return box()->value(); }
    void setCurrentValue(const QVariant&) override {}  // picked from the open list only
    QVariant maximumValue() const override { return {}; }
    QVariant minimumValue() const override { return {}; }
    QVariant minimumStepSize() const override { return {}; }

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? box()->value() : QAccessibleWidget::text(kind);
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
    setMinimumHeight(28);
    setFixedWidth(RowLayout::controlWidth());
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QComboBox::currentIndexChanged, this, [this] {
        QAccessibleValueChangeEvent event(this, value());
        QAccessible::updateAccessibility(&event);
    });
}

// The list is as wide as its texts, the box as all boxes.
void ChoiceBox::showPopup() {
    constexpr int room = 40;  // for the tick and the frame
    view()->setMinimumWidth(std::max(width(), view()->sizeHintForColumn(0) + room));
    QComboBox::showPopup();
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
