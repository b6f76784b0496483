#include "CorvaneBrell/Window/Card.h"

#include <QEvent>
#include <QPainter>

#include "CorvaneBrell/Window/Appearance.h"

namespace brell {

namespace {

constexpr double cornerRadius = 9;
constexpr int lineInset = 16;

}  // namespace

Card::Card(QWidget* parent) : QFrame(parent), rows_(new RowStack(this)) {
    rows_->setContentsMargins(1, 1, 1, 1);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Minimum);
}

void Card::add(QWidget* row) {
    insert(rows_->count(), row);
}

void Card::insert(int place, QWidget* row) {
    row->installEventFilter(this);
    rows_->insertWidget(place, row);
}

void Card::clear() {
    while (QLayoutItem* item = rows_->takeAt(0)) {
        item->widget()->hide();
        item->widget()->deleteLater();  // it may be the one whose click is being handled
        delete item;
    }
}

void Card::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Appearance::hairline(palette()), 1));
    painter.setBrush(Appearance::card(palette()));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
    bool first = true;
    for (int i = 0; i < rows_->count(); ++i) {
        const QWidget* row = rows_->itemAt(i)->widget();
        if (row->isHidden()) continue;
        if (!first)
            painter.drawLine(QPointF(lineInset, row->y() + 0.5),
                             QPointF(width() - lineInset, row->y() + 0.5));
        first = false;
    }
}

// The hairlines follow the rows.
bool Card::eventFilter(QObject* row, QEvent* event) {
    if (event->type() == QEvent::Move || event->type() == QEvent::ShowToParent ||
        event->type() == QEvent::HideToParent)
        update();
    return QFrame::eventFilter(row, event);
}

}  // namespace brell
