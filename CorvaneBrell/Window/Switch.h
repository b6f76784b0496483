// A switch that says On or Off in words. A click or the space bar asks for the other state, but only
// setPosition moves it: it shows what is so. The wheel does nothing.
#pragma once

#include <QAbstractButton>
#include <optional>

namespace brell {

class Switch final : public QAbstractButton {
    Q_OBJECT
public:
    explicit Switch(QWidget* parent = nullptr);
    // Nothing where it is not known: then it stands neither at On nor at Off.
    void setPosition(std::optional<bool> on);
    bool isKnown() const { return isKnown_; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent*) override;
    void nextCheckState() override {}

private:
    void paintWords(QPainter& painter, const QRectF& track, bool filled) const;

    bool isKnown_ = true;
};

}  // namespace brell
