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
        case Paragraph::Look::bodySmall:
        case Paragraph::Look::secondary: font.setPointSizeF(size * 0.92); break;
        case Paragraph::Look::small: font.setPointSizeF(size * 0.86); break;
        case Paragraph::Look::title:
            font.setPointSizeF(size * 1.6);
            font.setWeight(QFont::DemiBold);
            break;
        case Paragraph::Look::heading: font.setWeight(QFont::DemiBold); break;
        case Paragraph::Look::rowTitle:
            font.setPointSizeF(size * 1.08);
            font.setWeight(QFont::DemiBold);
            break;
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

bool beginsWord(const QString& text, qsizetype place) {
    return place == 0 || !text[place - 1].isLetterOrNumber();
}

QList<QTextLayout::FormatRange> rangesOf(const QStringList& words, const QString& text,
                                         const QColor& ground) {
    QTextCharFormat marked;
    marked.setBackground(ground);
    QList<QTextLayout::FormatRange> ranges;
    for (const QString& word : words)
        for (qsizetype place = text.indexOf(word, 0, Qt::CaseInsensitive); place >= 0;
             place = text.indexOf(word, place + 1, Qt::CaseInsensitive))
            if (beginsWord(text, place))
                ranges.append({static_cast<int>(place), static_cast<int>(word.size()), marked});
    return ranges;
}

}  // namespace

Paragraph::Paragraph(const QString& text, Look look, QWidget* parent) : QLabel(parent), look_(look) {
    setTextFormat(Qt::PlainText);
    setText(text);
    setWordWrap(true);
    setFont(fontFor(look, font()));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void Paragraph::setText(const QString& text) {
    QLabel::setText(text.size() <= longest ? text : text.left(longest) + "…");
}

void Paragraph::mark(const QStringList& words) {
    if (words == marks_) return;
    marks_ = words;
    update();
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
    const QSizeF size = laidOut(layout, std::max(width - overhang(), 1));
    return sizes_[width] = size + QSizeF(overhang(), 0);
}

// In large type some letters, as the J of many fonts, begin to the left of where they stand.
int Paragraph::overhang() const {
    if (look_ != Look::title || text().isEmpty()) return 0;
    return static_cast<int>(std::ceil(std::max(0.0, -QFontMetricsF(font()).leftBearing(text().front()))));
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
    painter.setPen(isQuiet() ? Appearance::secondaryText(palette())
                             : palette().color(QPalette::Active, QPalette::WindowText));
    QTextLayout layout(onLines(text()), font());
    if (!marks_.isEmpty()) layout.setFormats(rangesOf(marks_, text(), Appearance::marked(palette())));
    laidOut(layout, std::max(width() - overhang(), 1));
    layout.draw(&painter, QPointF(overhang(), 0));
}

}  // namespace brell
