// Lays widgets out in a line, and in further lines below when one is full.
#pragma once

#include <QLayout>
#include <vector>

namespace brell {

class FlowLayout final : public QLayout {
    Q_OBJECT
public:
    explicit FlowLayout(int gap);
    ~FlowLayout() override;

    void addItem(QLayoutItem* item) override { items_.push_back(item); }
    int count() const override { return static_cast<int>(items_.size()); }
    QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override { return arranged({0, 0, width, 0}, Act::measure); }
    QSize sizeHint() const override;
    QSize minimumSize() const override;
    void setGeometry(const QRect& place) override;

private:
    enum class Act { measure, place };
    // The height that the items take within the width of the place.
    int arranged(const QRect& place, Act act) const;

    int gap_;
    std::vector<QLayoutItem*> items_;
};

}  // namespace brell
