// A check box whose title wraps: the whole of it can be clicked, and no part of a long title is cut.
#pragma once

#include <QCheckBox>

namespace brell {

class TickBox final : public QCheckBox {
    Q_OBJECT
public:
    explicit TickBox(const QString& title, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool hitButton(const QPoint& place) const override { return rect().contains(place); }
};

}  // namespace brell
