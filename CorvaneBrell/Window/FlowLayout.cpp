#include "CorvaneBrell/Window/FlowLayout.h"

#include <algorithm>

namespace brell {

FlowLayout::FlowLayout(int gap) : gap_(gap) {
    setContentsMargins(0, 0, 0, 0);
}

FlowLayout::~FlowLayout() {
    for (const QLayoutItem* item : items_) delete item;
}

QLayoutItem* FlowLayout::itemAt(int index) const {
    return index >= 0 && index < count() ? items_[static_cast<std::size_t>(index)] : nullptr;
}

QLayoutItem* FlowLayout::takeAt(int index) {
    QLayoutItem* item = itemAt(index);
    if (item) items_.erase(items_.begin() + index);
    return item;
}

QSize FlowLayout::sizeHint() const {
    int width = 0, height = 0;
    for (const QLayoutItem* item : items_) {
        width += item->sizeHint().width() + (width ? gap_ : 0);
        height = std::max(height, item->sizeHint().height());
    }
    return {width, height};
}

QSize FlowLayout::minimumSize() const {
    QSize widest;
    for (const QLayoutItem* item : items_) widest = widest.expandedTo(item->minimumSize());
    return widest;
}

void FlowLayout::setGeometry(const QRect& place) {
    QLayout::setGeometry(place);
    arranged(place, Act::place);
}

int FlowLayout::arranged(const QRect& place, Act act) const {
    int x = place.x(), y = place.y(), lineHeight = 0;
    for (QLayoutItem* item : items_) {
        if (item->isEmpty()) continue;
        const QSize size = item->sizeHint().boundedTo({std::max(place.width(), 1), QLAYOUTSIZE_MAX});
        if (x > place.x() && x + size.width() > place.x() + place.width()) {
            x = place.x();
            y += lineHeight + gap_;
            lineHeight = 0;
        }
        if (act == Act::place) item->setGeometry({QPoint(x, y), size});
        x += size.width() + gap_;
        lineHeight = std::max(lineHeight, size.height());
    }
    return y + lineHeight - place.y();
}

}  // namespace brell
