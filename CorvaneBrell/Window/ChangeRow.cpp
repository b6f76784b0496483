#include "CorvaneBrell/Window/ChangeRow.h"

#include <QCheckBox>
#include <QPushButton>
#include <QVBoxLayout>

#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Model/EntryWords.h"
#include "CorvaneBrell/Window/DayText.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/TickBox.h"

namespace brell {

namespace {

QString whatOf(const ActiveChange& change) {
    const JournalEntry& entry = change.entry;
    QStringList lines = qt(change.lines);
    lines << QObject::tr("Since %1 at %2, on macOS %3")
                 .arg(dayText(entry.appliedAt), clockText(entry.appliedAt), qt(excerpt(entry.macOSVersion)));
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
    if (const auto failure = failureWords(change.entry))
        notices.push_back({qt(*failure), "exclamationmark.triangle", Tone::caution, {}});
    if (change.otherMacOS) notices.push_back({qt(*change.otherMacOS), "info.circle", Tone::plain, {}});
    return notices;
}

}  // namespace

ChangeRow::ChangeRow(AppModel& model, Kind kind, QWidget* parent)
    : Row({}, Columns::control, parent),
      restore_(actionButton(tr("Restore"), "arrow.uturn.backward")),
      undoSince_(actionButton(tr("Undo Everything Since"))) {
    auto* buttons = new QWidget;
    auto* column = new QVBoxLayout(buttons);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    if (kind == Kind::drifted) {
        tick_ = new TickBox(tr("Select"));
        column->addWidget(tick_);
        connect(tick_, &QCheckBox::toggled, this, &ChangeRow::ticked);
    }
    column->addWidget(restore_);
    column->addWidget(undoSince_);
    setControl(buttons);
    connect(restore_, &QPushButton::clicked, this, [this, &model] { model.askRestore(entryID()); });
    connect(undoSince_, &QPushButton::clicked, this, [this, &model] { model.askUndoSince(entryID()); });
}

bool ChangeRow::isTicked() const {
    return tick_ && tick_->isChecked() && tick_->isEnabled();
}

void ChangeRow::setRecord(const Record& record) {
    if (record_ == record) return;
    record_ = record;
    setObjectName(qt(keyOf(record)));
    setTitle(qt(record.title));
    setWhat(whatOf(record));
    setNotices(noticesOf(record));
    showButtons();
}

void ChangeRow::showButtons() {
    restore_->setAccessibleName(tr("Restore %1").arg(title()));
    restore_->setAccessibleDescription(tr("Back to: %1").arg(qt(brell::wayBack(record_->entry))));
    restore_->setEnabled(!record_->isLocked);
    undoSince_->setAccessibleName(tr("Undo everything since %1").arg(title()));
    undoSince_->setAccessibleDescription(tr("Restores this change and every later one."));
    undoSince_->setEnabled(!record_->isLocked);
    undoSince_->setVisible(!record_->isNewest);  // where it would be the same as Restore
    if (!tick_) return;
    tick_->setAccessibleName(tr("Select %1").arg(title()));
    tick_->setAccessibleDescription(tr("For the buttons below the list."));
    tick_->setEnabled(!record_->isLocked);
}

}  // namespace brell
