#include "CorvaneBrell/Window/TickBox.h"

#include <QHBoxLayout>
#include <QStyle>

#include "CorvaneBrell/Window/Paragraph.h"

namespace brell {

TickBox::TickBox(const QString& title, QWidget* parent) : QCheckBox(parent) {
    constexpr int smallestHeight = 28;
    const int indent = style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, this) +
                       style()->pixelMetric(QStyle::PM_CheckBoxLabelSpacing, nullptr, this);
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(indent + 2, 4, 0, 4);
    line->addWidget(new Paragraph(title, Paragraph::Look::heading), 1, Qt::AlignVCenter);
    setAccessibleName(title);
    setMinimumHeight(smallestHeight);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

QSize TickBox::sizeHint() const {
    return layout()->sizeHint();
}

QSize TickBox::minimumSizeHint() const {
    return layout()->minimumSize();
}

}  // namespace brell
