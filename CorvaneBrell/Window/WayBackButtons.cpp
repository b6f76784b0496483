#include "CorvaneBrell/Window/WayBackButtons.h"

#include <QPushButton>
#include <algorithm>

#include "CorvaneBrell/Model/EntryWords.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/QtText.h"

namespace brell {

WayBackButtons::WayBackButtons(AppModel& model, QWidget* parent)
    : QWidget(parent),
      column_(new QVBoxLayout(this)),
      restore_(actionButton(tr("Restore"), "arrow.uturn.backward")),
      undoSince_(actionButton(tr("Undo Everything Since"))) {
    column_->setContentsMargins(0, 0, 0, 0);
    column_->setSpacing(6);
    column_->addWidget(restore_);
    column_->addWidget(undoSince_);
    // As wide as the other, also where it stands alone.
    restore_->setMinimumWidth(std::max(undoSince_->sizeHint().width(), undoSince_->minimumWidth()));
    connect(restore_, &QPushButton::clicked, this, [this, &model] { model.askRestore(*entry_); });
    connect(undoSince_, &QPushButton::clicked, this, [this, &model] { model.askUndoSince(*entry_); });
}

void WayBackButtons::setEntry(const JournalEntry& entry, const QString& title, bool isNewest, bool isLocked) {
    entry_ = entry.id;
    restore_->setAccessibleName(tr("Restore %1").arg(title));
    restore_->setAccessibleDescription(tr("Back to: %1").arg(qt(wayBack(entry))));
    restore_->setEnabled(!isLocked);
    undoSince_->setAccessibleName(tr("Undo everything since %1").arg(title));
    undoSince_->setAccessibleDescription(tr("Restores this change and every later one."));
    undoSince_->setEnabled(!isLocked);
    undoSince_->setVisible(!isNewest);  // where it would be the same as Restore
}

}  // namespace brell
