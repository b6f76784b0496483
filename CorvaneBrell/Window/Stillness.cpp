#include "CorvaneBrell/Window/Stillness.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QStyleHints>

#include "CorvaneBrell/Window/Row.h"

namespace brell {

namespace {

bool takesClicks(const QWidget* widget) {
    return qobject_cast<const QAbstractButton*>(widget) || qobject_cast<const QComboBox*>(widget) ||
           qobject_cast<const QAbstractItemView*>(widget) || qobject_cast<const QLineEdit*>(widget) ||
           qobject_cast<const QMenu*>(widget) || qobject_cast<const Row*>(widget);
}

QString nameOf(const QWidget* control) {
    if (!control->accessibleName().isEmpty()) return control->accessibleName();
    const auto* button = qobject_cast<const QAbstractButton*>(control);
    return button ? button->text() : QString();
}

// It would answer what the first press led to: a list that it opened, or the next sheet.
bool isHeldAnswer(const QKeyEvent& key) {
    const bool answers =
        key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter || key.key() == Qt::Key_Escape;
    return answers && key.isAutoRepeat();
}

QPoint pointerOf(const QEvent& event) {
    return static_cast<const QMouseEvent&>(event).globalPosition().toPoint();
}

}  // namespace

Stillness::Stillness(QObject* parent) : QObject(parent) {
    soon_.setSingleShot(true);
    soon_.setInterval(0);
    connect(&soon_, &QTimer::timeout, this, &Stillness::lookAgain);
    qApp->installEventFilter(this);
}

Stillness::Target Stillness::targetAt(const QPoint& place) {
    for (QWidget* widget = QApplication::widgetAt(place); widget; widget = widget->parentWidget())
        if (takesClicks(widget)) return {widget, nameOf(widget)};
    return {};
}

bool Stillness::eventFilter(QObject* watched, QEvent* event) {
    if (!watched->isWidgetType()) return false;
    switch (event->type()) {
        case QEvent::MouseMove: follow(pointerOf(*event)); return false;
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick: return isTooSoon(pointerOf(*event));
        case QEvent::ShortcutOverride:  // with which a list is answered
        case QEvent::KeyPress: return isHeldAnswer(static_cast<const QKeyEvent&>(*event));
        case QEvent::Move:
        case QEvent::Resize:
        case QEvent::Show:
        case QEvent::Hide:
            if (!soon_.isActive()) soon_.start();
            return false;
        default: return false;
    }
}

// Something moved or came or went, perhaps under the pointer.
void Stillness::lookAgain() {
    Target now = targetAt(pointer_);
    if (now == target_) return;
    target_ = std::move(now);
    since_.start();
}

// The user moves the pointer: whatever is below it now, it was there to be seen.
void Stillness::follow(const QPoint& pointer) {
    pointer_ = pointer;
    const int way = (pointer - rest_).manhattanLength();
    if (rest_.x() >= 0 && way <= QGuiApplication::styleHints()->mouseDoubleClickDistance()) return;
    rest_ = pointer;
    target_ = targetAt(pointer);
    since_.invalidate();
}

bool Stillness::isTooSoon(const QPoint& pointer) {
    follow(pointer);
    lookAgain();
    return target_.control && since_.isValid() && since_.elapsed() < waiting_.count();
}

}  // namespace brell
