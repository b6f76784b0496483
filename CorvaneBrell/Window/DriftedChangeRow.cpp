#include "CorvaneBrell/Window/DriftedChangeRow.h"

#include <QPushButton>

#include "CorvaneBrell/Model/JournalWords.h"
#include "CorvaneBrell/Window/DayText.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/TickBox.h"

namespace brell {

DriftedChangeRow::DriftedChangeRow(AppModel& model, QWidget* parent)
    : Row({}, parent),
      model_(model),
      tick_(new TickBox(tr("Apply again"))),
      restore_(actionButton(tr("Restore"), "arrow.uturn.backward")) {
    tick_->setMinimumHeight(28);
    auto* controls = new QWidget;
    auto* column = new QVBoxLayout(controls);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    column->addWidget(tick_);
    column->addWidget(restore_);
    setControl(controls);
    connect(tick_, &QCheckBox::toggled, this, &DriftedChangeRow::ticked);
    connect(restore_, &QPushButton::clicked, this, [this] { model_.askRestore(entryID()); });
}

void DriftedChangeRow::setRecord(const Record& record) {
    if (record_ == record) return;
    record_ = record;
    const QString title = qt(record.title);
    const JournalEntry& entry = record.entry;
    setObjectName(qt(keyOf(record)));
    setTitle(title);
    setWhat(tr("%1\nSince %2 at %3, on macOS %4")
                .arg(qt(record.lines).join('\n'), dayText(entry.appliedAt), clockText(entry.appliedAt),
                     qt(entry.macOSVersion)));
    setNotice(record.otherMacOS ? qt(*record.otherMacOS) : QString());
    tick_->setAccessibleName(tr("Apply %1 again").arg(title));
    tick_->setAccessibleDescription(tr("Takes effect with the button below the list."));
    tick_->setEnabled(!record.isLocked);
    restore_->setAccessibleName(tr("Restore %1").arg(title));
    restore_->setAccessibleDescription(tr("Back to: %1").arg(qt(JournalWords::wayBack(entry))));
    restore_->setEnabled(!record.isLocked);
}

}  // namespace brell
