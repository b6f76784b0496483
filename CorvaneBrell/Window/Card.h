// A surface that holds rows, one below the other, with a hairline between them.
#pragma once

#include <QFrame>

#include "CorvaneBrell/Window/RowStack.h"

namespace brell {

class Card final : public QFrame {
    Q_OBJECT
public:
    explicit Card(QWidget* parent = nullptr);

    // Takes the row. Rows that are hidden leave no gap.
    void add(QWidget* row);
    void insert(int place, QWidget* row);
    int count() const { return rows_->count(); }
    // Removes and deletes every row.
    void clear();

protected:
    void paintEvent(QPaintEvent*) override;
    bool eventFilter(QObject* row, QEvent* event) override;

private:
    RowStack* rows_;
};

}  // namespace brell
