#include "CorvaneBrell/Window/RecordList.h"

#include "CorvaneBrell/Window/Page.h"

namespace brell {

RowColumn::RowColumn(const QString& heading, std::size_t batch, QWidget* parent)
    : QWidget(parent), batch_(batch), card_(new Card), more_(actionButton({})) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(7);
    if (!heading.isEmpty()) column->addWidget(sectionHeading(heading));
    column->addWidget(card_);
    column->addWidget(more_, 0, Qt::AlignLeft);
    setAccessibleName(heading);
    hide();
    connect(more_, &QPushButton::clicked, this, [this] {
        limit_ += batch_;
        emit moreWanted();
    });
}

RowColumn::Rearrangement::Rearrangement(RowColumn& column) : rows_(*column.card_->layout()) {
    rows_.setEnabled(false);
}

RowColumn::Rearrangement::~Rearrangement() {
    rows_.setEnabled(true);
    rows_.invalidate();
}

void RowColumn::put(int place, QWidget* row) {
    QLayout* rows = card_->layout();
    const QLayoutItem* there = rows->itemAt(place);
    if (there && there->widget() == row) return;
    rows->removeWidget(row);
    card_->insert(place, row);
    row->show();  // else that waits until the rows are laid out again
}

void RowColumn::hideAway(QWidget* row) {
    card_->layout()->removeWidget(row);
    row->hide();
    row->setObjectName({});  // it is found by its record's name no more
}

void RowColumn::takeOut(QWidget* row) {
    hideAway(row);
    row->deleteLater();  // it may be the one whose click is being handled
}

void RowColumn::setCounts(std::size_t shown, std::size_t all) {
    setVisible(shown > 0);
    more_->setVisible(shown < all);
    setActionText(more_, tr("Show %1 More").arg(std::min(batch_, all - std::min(shown, all))));
}

}  // namespace brell
