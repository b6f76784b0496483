#include "CorvaneBrell/Window/DriftedChangeRow.h"

#include "CorvaneBrell/Window/DayText.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/TickBox.h"
#include "CorvaneBrell/Window/WayBackButtons.h"

namespace brell {

DriftedChangeRow::DriftedChangeRow(AppModel& model, QWidget* parent)
    : Row({}, parent), tick_(new TickBox(tr("Apply again"))), wayBack_(new WayBackButtons(model)) {
    tick_->setMinimumHeight(28);
    wayBack_->addAbove(tick_);
    setControl(wayBack_);
    connect(tick_, &QCheckBox::toggled, this, &DriftedChangeRow::ticked);
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
    wayBack_->setEntry(entry, title, record.isNewest, record.isLocked);
}

}  // namespace brell
