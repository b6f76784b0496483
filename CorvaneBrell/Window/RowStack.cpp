#include "CorvaneBrell/Window/RowStack.h"

#include <QWidget>
#include <algorithm>

namespace brell {

RowStack::RowStack(QWidget* parent) : QLayout(parent) {}

RowStack::~RowStack() = default;

void RowStack::insertWidget(int place, QWidget* row) {
    addChildWidget(row);
    items_.insert(items_.begin() + std::clamp(place, 0, count()), std::make_unique<QWidgetItemV2>(row));
    invalidate();
}

void RowStack::addItem(QLayoutItem* item) {
    items_.emplace_back(item);
    invalidate();
}

QLayoutItem* RowStack::itemAt(int place) const {
    return place >= 0 && place < count() ? items_[static_cast<std::size_t>(place)].get() : nullptr;
}

QLayoutItem* RowStack::takeAt(int place) {
    if (!itemAt(place)) return nullptr;
    const auto taken = items_.begin() + place;
    QLayoutItem* item = taken->release();
    items_.erase(taken);
    invalidate();
    return item;
}

QSize RowStack::stacked(const std::function<QSize(const QLayoutItem&)>& sizeOf) const {
    QSize all(0, 0);
    for (const auto& item : items_) {
        if (item->isEmpty()) continue;
        const QSize size = sizeOf(*item);
        all = {std::max(all.width(), size.width()), all.height() + size.height()};
    }
    const QMargins margins = contentsMargins();
    return all.grownBy(margins);
}

QSize RowStack::sizeHint() const {
    return stacked([](const QLayoutItem& item) { return item.sizeHint(); });
}

QSize RowStack::minimumSize() const {
    return stacked([](const QLayoutItem& item) { return item.minimumSize(); });
}

int RowStack::heightForWidth(int width) const {
    const QMargins margins = contentsMargins();
    const int inner = width - margins.left() - margins.right();
    return stacked([inner](const QLayoutItem& item) {
               return QSize(inner,
                            item.hasHeightForWidth() ? item.heightForWidth(inner) : item.sizeHint().height());
           })
        .height();
}

void RowStack::setGeometry(const QRect& place) {
    QLayout::setGeometry(place);
    QRect row = place.marginsRemoved(contentsMargins());
    for (const auto& item : items_) {
        if (item->isEmpty()) continue;
        row.setHeight(item->hasHeightForWidth() ? item->heightForWidth(row.width())
                                                : item->sizeHint().height());
        item->setGeometry(row);
        row.moveTop(row.bottom() + 1);
    }
}

}  // namespace brell
