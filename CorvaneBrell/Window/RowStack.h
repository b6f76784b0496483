// Rows below one another, each as wide as the stack and as high as its texts are at that width.
#pragma once

#include <QLayout>
#include <functional>
#include <memory>
#include <vector>

namespace brell {

// A box layout forgets how high its rows are whenever one of them changes or another width is asked for, and
// asks a hundred rows again at every level above. Here each row remembers.
class RowStack final : public QLayout {
    Q_OBJECT
public:
    explicit RowStack(QWidget* parent);
    ~RowStack() override;

    void insertWidget(int place, QWidget* row);

    void addItem(QLayoutItem* item) override;
    int count() const override { return static_cast<int>(items_.size()); }
    QLayoutItem* itemAt(int place) const override;
    QLayoutItem* takeAt(int place) override;
    QSize sizeHint() const override;
    QSize minimumSize() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    int minimumHeightForWidth(int width) const override { return heightForWidth(width); }
    Qt::Orientations expandingDirections() const override { return {}; }
    void setGeometry(const QRect& place) override;

private:
    QSize stacked(const std::function<QSize(const QLayoutItem&)>& sizeOf) const;

    std::vector<std::unique_ptr<QLayoutItem>> items_;
};

}  // namespace brell
