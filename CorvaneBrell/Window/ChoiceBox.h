// A list of choices that changes only when one is picked from the open list: the wheel belongs to the page,
// arrows and the space bar open the list.
#pragma once

#include <QComboBox>

namespace brell {

class ChoiceBox final : public QComboBox {
    Q_OBJECT
public:
    explicit ChoiceBox(QWidget* parent = nullptr);

protected:
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace brell
