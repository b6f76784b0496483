#include "CorvaneBrell/Window/RecordList.h"

#include "CorvaneBrell/Window/Page.h"

namespace brell {

RowColumn::RowColumn(const QString& heading, QWidget* parent)
    : QWidget(parent), card_(new Card), more_(actionButton({})) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(7);
    if (!heading.isEmpty()) column->addWidget(sectionHeading(heading));
    column->addWidget(card_);
    column->addWidget(more_, 0, Qt::AlignLeft);
    setAccessibleName(heading);
    hide();
    connect(more_, &QPushButton::clicked, this, [this] {
        limit_ += batch;
        emit moreWanted();
    });
}

void RowColumn::put(int place, QWidget* row) {
    QLayout* rows = card_->layout();
    const QLayoutItem* there = rows->itemAt(place);
    if (there && there->widget() == row) return;
    rows->removeWidget(row);
    card_->insert(place, row);
}

void RowColumn::takeOut(QWidget* row) {
    card_->layout()->removeWidget(row);
    row->hide();
    row->deleteLater();  // it may be the one whose click is being handled
}

void RowColumn::setCounts(std::size_t shown, std::size_t all) {
    setVisible(shown > 0);
    more_->setVisible(shown < all);
    more_->setText(tr("Show %1 More").arg(std::min(batch, all - std::min(shown, all))));
}

}  // namespace brell
