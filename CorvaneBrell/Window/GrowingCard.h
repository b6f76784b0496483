// Rows that stay as they are, on a card: the first ones, and more when they are asked for.
#pragma once

#include <QStringList>

#include "CorvaneBrell/Window/RecordList.h"

namespace brell {

class GrowingCard final : public RowColumn {
    Q_OBJECT
public:
    // A row that shows the parts from first, and at most this many.
    using MakeRow = std::function<QWidget*(std::size_t first, std::size_t count)>;

    // So many parts are all. A row shows rowLength of them at most.
    GrowingCard(std::size_t all, std::size_t batch, std::size_t rowLength, MakeRow makeRow, QWidget* parent);

private:
    void grow();

    const std::size_t all_;
    const std::size_t rowLength_;
    const MakeRow makeRow_;
    std::size_t shown_ = 0;
    int rows_ = 0;
};

// A row for each of so many.
GrowingCard* rowCard(std::size_t all, const std::function<QWidget*(std::size_t)>& makeRow, QWidget* parent);
// Lines to read, select and copy. The name is what assistive technology calls them.
GrowingCard* lineCard(const QString& name, const QStringList& lines, QWidget* parent);

}  // namespace brell
