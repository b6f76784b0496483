#include "CorvaneBrell/Window/TickBox.h"

#include <QHBoxLayout>
#include <QPainter>

#include "CorvaneBrell/Window/Appearance.h"

namespace brell {

namespace {

constexpr double side = 16;
constexpr int focusMargin = 3;
constexpr int smallestHeight = 28;

}  // namespace

TickBox::TickBox(const QString& title, Paragraph::Look look, QWidget* parent)
    : QCheckBox(parent), text_(new Paragraph(title, look)) {
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(indent, 4, 0, 4);
    line->addWidget(text_, 1, Qt::AlignVCenter);
    setAccessibleName(title);
    setMinimumHeight(smallestHeight);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void TickBox::setTitle(const QString& title) {
    text_->setText(title);
    setAccessibleName(title);
}

QSize TickBox::sizeHint() const {
    return layout()->sizeHint();
}

QSize TickBox::minimumSizeHint() const {
    return layout()->minimumSize();
}

void TickBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box(focusMargin, (height() - side) / 2, side, side);
    const QColor accent = palette().color(QPalette::Active, QPalette::Highlight);
    const bool filled = isChecked() && isEnabled();
    if (hasFocus()) {
        painter.setPen(QPen(accent, 2));
        painter.drawRoundedRect(box.adjusted(-2, -2, 2, 2), 6, 6);
    }
    const QColor edge = isEnabled() ? Appearance::outline(palette()) : Appearance::hairline(palette());
    painter.setPen(filled ? Qt::NoPen : QPen(edge, 1.2));
    painter.setBrush(filled ? accent : palette().color(QPalette::Active, QPalette::Base));
    painter.drawRoundedRect(box.adjusted(0.6, 0.6, -0.6, -0.6), 4, 4);
    if (!isChecked()) return;
    const QColor mark = filled ? palette().color(QPalette::Active, QPalette::HighlightedText) : edge;
    painter.setPen(QPen(mark, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF(
        {box.topLeft() + QPointF(4, 8.5), box.topLeft() + QPointF(7, 11.5), box.topLeft() + QPointF(12, 5)}));
}

}  // namespace brell
