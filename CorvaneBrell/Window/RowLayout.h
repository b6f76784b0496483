// Where the parts of a row stand: the words at the left; at the right, in columns that are the same on every
// page, the badge, the way back, the control and the arrow; the details below everything.
#pragma once

#include <QLayout>
#include <array>
#include <memory>

namespace brell {

// In a row that is narrow the badge stands under the title, at the right end of the last line, in a place
// that is kept for it: whatever comes and goes, the row has one height, and no line is empty.
class RowLayout final : public QLayout {
    Q_OBJECT
public:
    // In the order of the Tab key.
    enum class Part { title, words, notes, badge, wayBack, control, arrow, details };
    static constexpr std::size_t parts = 8;
    static int controlWidth();  // of a list of choices, and the column of every control

    explicit RowLayout(QWidget* row);
    ~RowLayout() override;

    // Takes it; at most one of each. A part that is there already is removed and deleted.
    void put(Part part, QWidget* widget);
    void put(Part part, QLayout* layout);

    // Rows that never have a badge and a way back leave their columns to the words. The others keep this room
    // for the badge, also while they have none.
    void setBadgeRoom(const QSize& room) { badgeRoom_ = room; }

    void addItem(QLayoutItem*) override {}
    int count() const override;
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
    using Places = std::array<QRect, parts>;

    QLayoutItem* item(Part part) const { return items_[static_cast<std::size_t>(part)].get(); }
    int heightOf(Part part, int width) const;
    int controlWidthNeeded() const;
    int placeColumns(Places& places, int right) const;
    int placeWide(Places& places, int left, int columnsLeft) const;
    int roomOfTitle(Places& places, int left, int columnsLeft) const;
    int placeNarrow(Places& places, int left, int columnsLeft, int right) const;
    int placeFoot(Places& places, int left, int top, int lastLine, int whole) const;
    // Gives the height of them all.
    int arranged(Places& places, int width) const;

    std::array<std::unique_ptr<QLayoutItem>, parts> items_;
    QSize badgeRoom_;  // empty without
};

}  // namespace brell
