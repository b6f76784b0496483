#include "CorvaneBrell/Window/TabOrder.h"

#include <QEvent>
#include <QLayout>
#include <QScrollArea>

namespace brell {

namespace {

void collect(QWidget* widget, std::vector<QPointer<QWidget>>& controls);

void collect(QLayout* layout, std::vector<QPointer<QWidget>>& controls) {
    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem* item = layout->itemAt(i);
        if (item->layout()) collect(item->layout(), controls);
        if (item->widget()) collect(item->widget(), controls);
    }
}

void collect(QWidget* widget, std::vector<QPointer<QWidget>>& controls) {
    if (widget->focusPolicy() & Qt::TabFocus) controls.emplace_back(widget);
    const auto* scroll = qobject_cast<QScrollArea*>(widget);
    if (scroll && scroll->widget()) return collect(scroll->widget(), controls);
    if (widget->layout()) collect(widget->layout(), controls);
}

}  // namespace

QWidget* firstControl(QWidget* in) {
    std::vector<QPointer<QWidget>> order;
    collect(in, order);
    for (const QPointer<QWidget>& control : order)
        if (control->isVisible() && control->isEnabled()) return control;
    return nullptr;
}

TabOrder::TabOrder(QWidget* widget, QWidget* content) : QObject(widget), widget_(widget) {
    content->installEventFilter(this);
}

bool TabOrder::eventFilter(QObject* content, QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) follow();
    return QObject::eventFilter(content, event);
}

void TabOrder::follow() {
    std::vector<QPointer<QWidget>> order;
    collect(widget_, order);
    if (order == order_) return;
    order_ = std::move(order);
    for (std::size_t i = 1; i < order_.size(); ++i) QWidget::setTabOrder(order_[i - 1], order_[i]);
}

}  // namespace brell
