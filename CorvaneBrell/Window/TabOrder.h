// The Tab key goes the way the eye goes, also through what was added later.
#pragma once

#include <QPointer>
#include <QWidget>
#include <vector>

namespace brell {

// The first control that Tab can reach in this part of the window; nullptr when there is none.
QWidget* firstControl(QWidget* in);

// Watches the layout of a part of the window and keeps the order of its controls.
class TabOrder final : public QObject {
    Q_OBJECT
public:
    // The changes are those of the content; the order is kept of everything in the widget.
    TabOrder(QWidget* widget, QWidget* content);

protected:
    bool eventFilter(QObject* content, QEvent* event) override;

private:
    void follow();

    QWidget* widget_;
    std::vector<QPointer<QWidget>> order_;
};

}  // namespace brell
