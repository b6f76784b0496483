#include "CorvaneBrell/Window/Symbol.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QLibraryInfo>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

#include "CorvaneBrell/Platform/Symbols.h"
#include "CorvaneBrell/Window/QtText.h"

namespace brell {

namespace {

// The shape alone; where it is opaque the colour goes.
QImage systemShape(const std::string& name, const QSize& points, double scale) {
    const auto symbol = systemSymbol(name, points.height(), scale);
    if (!symbol) return {};
    const QImage coverage(symbol->coverage.data(), symbol->side, symbol->side, symbol->side,
                          QImage::Format_Alpha8);
    return coverage.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QImage drawnShape(const std::string& name, const QSize& points, double scale) {
    QSvgRenderer drawing(":/symbols/" + qt(name) + ".svg");
    if (!drawing.isValid()) return {};
    QImage shape(points * scale, QImage::Format_ARGB32_Premultiplied);
    shape.fill(Qt::transparent);
    QPainter painter(&shape);
    drawing.render(&painter);
    return shape;
}

QPixmap symbolPixmap(const std::string& name, const QColor& color, const QSize& points, double scale) {
    const QString key = QStringLiteral("symbol %1 %2 %3x%4 %5")
                            .arg(qt(name), color.name())
                            .arg(points.width())
                            .arg(points.height())
                            .arg(scale);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap)) return pixmap;
    QImage shape = systemShape(name, points, scale);
    if (shape.isNull()) shape = drawnShape(name, points, scale);
    if (shape.isNull()) return {};
    QPainter painter(&shape);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(shape.rect(), color);
    painter.end();
    pixmap = QPixmap::fromImage(std::move(shape));
    pixmap.setDevicePixelRatio(scale);
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

class SymbolEngine final : public QIconEngine {
public:
    SymbolEngine(std::string name, Tone tone) : name_(std::move(name)), tone_(tone) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        painter->drawPixmap(
            rect, symbolPixmap(name_, colorFor(mode), rect.size(), painter->device()->devicePixelRatioF()));
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        return symbolPixmap(name_, colorFor(mode), size, 1.0);
    }
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State, qreal scale) override {
        return symbolPixmap(name_, colorFor(mode), askedPoints(size, scale, QLibraryInfo::version()), scale);
    }
    QIconEngine* clone() const override { return new SymbolEngine(*this); }

private:
    QColor colorFor(QIcon::Mode mode) const {
        const QPalette palette = QGuiApplication::palette();
        if (mode == QIcon::Selected) return palette.color(QPalette::HighlightedText);
        if (mode == QIcon::Disabled) return palette.color(QPalette::Disabled, QPalette::WindowText);
        return Appearance::toned(tone_, palette);
    }

    std::string name_;
    Tone tone_;
};

}  // namespace

QIcon symbolIcon(std::string_view name, Tone tone) {
    return QIcon(new SymbolEngine(std::string(name), tone));
}

QSize askedPoints(const QSize& asked, double scale, const QVersionNumber& toolkit) {
    return toolkit < QVersionNumber(6, 8) ? asked / scale : asked;
}

SymbolView::SymbolView(std::string_view name, Tone tone, int points, QWidget* parent)
    : QWidget(parent), name_(name), tone_(tone), points_(points) {
    setFixedSize(points, points);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void SymbolView::setSymbol(std::string_view name, Tone tone) {
    name_ = name;
    tone_ = tone;
    update();
}

void SymbolView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.drawPixmap(rect(),
                       symbolPixmap(name_, Appearance::toned(tone_, palette()), size(), devicePixelRatioF()));
}

}  // namespace brell
