#include "CorvaneBrell/Window/ChoiceBox.h"

#include <QKeyEvent>
#include <QWheelEvent>

namespace brell {

ChoiceBox::ChoiceBox(QWidget* parent) : QComboBox(parent) {
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
