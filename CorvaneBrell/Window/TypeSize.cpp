#include "CorvaneBrell/Window/TypeSize.h"

#include <QApplication>
#include <QFontMetricsF>
#include <algorithm>
#include <cmath>

namespace brell {

namespace {

struct Type {
    QFont font;
    double character, line;
};

// Layouts ask again and again. The average that fonts give of themselves is that of another set of
// characters in each.
const Type& type() {
    static Type known{{}, 0, 0};
    const QFont font = QApplication::font();
    if (known.character > 0 && known.font == font) return known;
    const QString text = "Every change Brell made, and the way back";
    const QFontMetricsF metrics(font);
    known = {font, metrics.horizontalAdvance(text) / static_cast<double>(text.size()), metrics.height()};
    return known;
}

}  // namespace

int widthFor(int characters, int usual) {
    return std::max(usual, static_cast<int>(std::ceil(type().character * characters)));
}

int heightFor(int around, int usual) {
    return std::max(usual, static_cast<int>(std::ceil(type().line)) + around);
}

}  // namespace brell
