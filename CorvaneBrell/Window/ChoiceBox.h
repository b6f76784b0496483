// A list of choices that changes only when one is picked from the open list: the wheel belongs to the page,
// arrows and the space bar open the list.
#pragma once

#include <QComboBox>

namespace brell {

class ChoiceBox : public QComboBox {
    Q_OBJECT
public:
    explicit ChoiceBox(QWidget* parent = nullptr);

    // The item that is picked, in the words of the list.
    QString value() const { return currentIndex() < 0 ? placeholderText() : currentText(); }
    void showPopup() override;

protected:
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace brell
