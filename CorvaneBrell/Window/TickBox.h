// A check box whose title wraps: the whole of it can be clicked, no part of a long title is cut, and its edge
// can be seen in light and in dark.
#pragma once

#include <QCheckBox>

#include "CorvaneBrell/Window/Paragraph.h"

namespace brell {

class TickBox final : public QCheckBox {
    Q_OBJECT
public:
    static constexpr int indent = 26;  // of the title

    explicit TickBox(const QString& title, Paragraph::Look look = Paragraph::Look::body,
                     QWidget* parent = nullptr);

    void setTitle(const QString& title);
    QString title() const { return text_->text(); }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent*) override;
    bool hitButton(const QPoint& place) const override { return rect().contains(place); }

private:
    Paragraph* text_;
};

}  // namespace brell
