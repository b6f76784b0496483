// A switch that says On or Off in words. A click or the space bar asks for the other state, but only
// setChecked moves it: it shows what is so. The wheel does nothing.
#pragma once

#include <QAbstractButton>

namespace brell {

class Switch final : public QAbstractButton {
    Q_OBJECT
public:
    explicit Switch(QWidget* parent = nullptr);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent*) override;
    void nextCheckState() override {}
};

}  // namespace brell
