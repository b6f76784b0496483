#include "CorvaneBrell/Window/Paragraph.h"

#include <QFontDatabase>
#include <QPainter>
#include <QTextLayout>
#include <cmath>

#include "CorvaneBrell/Window/Appearance.h"

namespace brell {

namespace {

constexpr int comfortableWidth = 420;

QFont fontFor(Paragraph::Look look, QFont font) {
    const double size = font.pointSizeF();
    switch (look) {
        case Paragraph::Look::body: break;
        case Paragraph::Look::secondary: font.setPointSizeF(size * 0.92); break;
        case Paragraph::Look::title:
            font.setPointSizeF(size * 1.6);
            font.setWeight(QFont::DemiBold);
            break;
        case Paragraph::Look::heading: font.setWeight(QFont::DemiBold); break;
        case Paragraph::Look::monospace:
            font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
            font.setPointSizeF(size * 0.92);
            break;
    }
    return font;
}

// Lays the lines out below one another and gives the size they take.
QSizeF laidOut(QTextLayout& layout, int width) {
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    qreal height = 0, widest = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition({0, height});
        height += std::ceil(line.height());
        widest = std::max(widest, line.naturalTextWidth());
    }
    layout.endLayout();
    return {widest, height};
}

QString onLines(QString text) {
    return text.replace('\n', QChar::LineSeparator);
}

}  // namespace

Paragraph::Paragraph(const QString& text, Look look, QWidget* parent) : QLabel(text, parent), look_(look) {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setFont(fontFor(look, font()));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

QSizeF Paragraph::measured(int width) const {
    if (measuredText_ != text() || measuredFont_ != font()) {
        sizes_.clear();
        measuredText_ = text();
        measuredFont_ = font();
    }
    const auto known = sizes_.find(width);
    if (known != sizes_.end()) return known->second;
    QTextLayout layout(onLines(text()), font());
    return sizes_[width] = laidOut(layout, width);
}

int Paragraph::heightForWidth(int width) const {
    return static_cast<int>(std::ceil(measured(std::max(width, 1)).height()));
}

QSize Paragraph::sizeHint() const {
    const QSizeF size = measured(comfortableWidth);
    return {static_cast<int>(std::ceil(size.width())) + 1, static_cast<int>(std::ceil(size.height()))};
}

QSize Paragraph::minimumSizeHint() const {
    return {std::min(sizeHint().width(), fontMetrics().averageCharWidth() * 12), fontMetrics().height()};
}

void Paragraph::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const bool quiet = look_ == Look::secondary || look_ == Look::monospace;
    painter.setPen(quiet ? Appearance::secondaryText(palette())
                         : palette().color(QPalette::Active, QPalette::WindowText));
    QTextLayout layout(onLines(text()), font());
    laidOut(layout, std::max(width(), 1));
    layout.draw(&painter, {0, 0});
}

}  // namespace brell
