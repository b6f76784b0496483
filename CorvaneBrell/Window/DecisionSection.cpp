#include "CorvaneBrell/Window/DecisionSection.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "CorvaneBrell/Window/Page.h"

namespace brell {

DecisionSection::DecisionSection(AppModel& model, const QString& heading, const QString& explanation)
    : model_(model),
      changes_(new RecordList<ChangeRow>({},
                                         [this] {
                                             auto* row = new ChangeRow(model_, ChangeRow::Kind::toDecide);
                                             connect(row, &ChangeRow::ticked, this,
                                                     &DecisionSection::showTicks);
                                             return row;
                                         })),
      buttons_(new QHBoxLayout) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(7);
    column->addWidget(sectionHeading(heading));
    column->addWidget(new Paragraph(explanation, Paragraph::Look::secondary));
    column->addWidget(changes_);
    column->addLayout(buttons_);
    buttons_->setSpacing(8);
    buttons_->addStretch();
    connect(changes_, &RowColumn::moreWanted, this, &DecisionSection::moreWanted);
}

void DecisionSection::addAction(const QString& none, const QString& some, Act act,
                                bool (ChangeRow::*canTakeIt)() const) {
    auto* button = actionButton(some.arg(99));  // room for as many
    buttons_->insertWidget(buttons_->count() - 1, button);
    actions_.push_back({button, none, some, canTakeIt});
    connect(button, &QPushButton::clicked, this, [this, act, canTakeIt] { perform(act, canTakeIt); });
}

void DecisionSection::perform(Act act, bool (ChangeRow::*canTakeIt)() const) {
    (model_.*act)(ticked(canTakeIt));
}

void DecisionSection::setChanges(const std::vector<ActiveChange>& first, std::size_t all) {
    changes_->setRecords(first, all);
    setVisible(all > 0);
    showTicks();
}

std::vector<Uuid> DecisionSection::ticked(bool (ChangeRow::*canTakeIt)() const) const {
    std::vector<Uuid> ids;
    for (const auto& [key, row] : changes_->rows())
        if (row->isTicked() && (row->*canTakeIt)()) ids.push_back(row->entryID());
    return ids;
}

void DecisionSection::showTicks() {
    for (const Action& action : actions_) {
        const std::size_t count = ticked(action.canTakeIt).size();
        action.button->setEnabled(count > 0);
        action.button->setText(count == 0 ? action.none : action.some.arg(count));
        action.button->setAccessibleDescription(count == 0 ? tr("Tick a change first.") : QString());
    }
}

}  // namespace brell
