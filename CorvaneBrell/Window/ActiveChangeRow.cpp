#include "CorvaneBrell/Window/ActiveChangeRow.h"

#include <QPushButton>

#include "CorvaneBrell/Model/JournalWords.h"
#include "CorvaneBrell/Window/DayText.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/QtText.h"

namespace brell {

namespace {

QString whatOf(const JournalEntry& entry) {
    QStringList lines = qt(JournalWords::keyLines(entry));
    lines << QObject::tr("Since %1 at %2, on macOS %3")
                 .arg(dayText(entry.appliedAt), clockText(entry.appliedAt), qt(entry.macOSVersion));
    return lines.join('\n');
}

std::vector<RowBadge> noticesOf(const ActiveChange& change) {
    std::vector<RowBadge> notices;
    if (change.isInterrupted)
        notices.push_back(
            {QObject::tr("Interrupted before it was finished. Restoring puts the originals back."),
             "bolt.slash",
             Tone::caution,
             {}});
    if (change.entry.failure)
        notices.push_back({qt(*change.entry.failure), "exclamationmark.triangle", Tone::caution, {}});
    if (change.otherMacOS) notices.push_back({qt(*change.otherMacOS), "info.circle", Tone::plain, {}});
    return notices;
}

}  // namespace

ActiveChangeRow::ActiveChangeRow(AppModel& model, QWidget* parent)
    : Row({}, parent),
      model_(model),
      restore_(actionButton(tr("Restore"), "arrow.uturn.backward")),
      undoSince_(actionButton(tr("Undo Everything Since"))) {
    auto* buttons = new QWidget;
    auto* column = new QVBoxLayout(buttons);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    column->addWidget(restore_);
    column->addWidget(undoSince_);
    restore_->setMinimumWidth(undoSince_->sizeHint().width());  // also where it stands alone
    setControl(buttons);
    connect(restore_, &QPushButton::clicked, this, [this] { model_.askRestore(record_->entry.id); });
    connect(undoSince_, &QPushButton::clicked, this, [this] { model_.askUndoSince(record_->entry.id); });
}

void ActiveChangeRow::setRecord(const Record& record) {
    if (record_ == record) return;
    record_ = record;
    const QString title = qt(record.title);
    setObjectName(qt(keyOf(record)));
    setTitle(title);
    setWhat(whatOf(record.entry));
    setNotices(noticesOf(record));
    restore_->setAccessibleName(tr("Restore %1").arg(title));
    restore_->setAccessibleDescription(tr("Back to: %1").arg(qt(JournalWords::wayBack(record.entry))));
    restore_->setEnabled(!record.isLocked);
    undoSince_->setAccessibleName(tr("Undo everything since %1").arg(title));
    undoSince_->setAccessibleDescription(tr("Restores this change and every later one."));
    undoSince_->setEnabled(!record.isLocked);
    undoSince_->setVisible(!record.isNewest);  // where it would be the same as Restore
}

}  // namespace brell
