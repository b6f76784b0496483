#include "CorvaneBrell/Window/ChangeRow.h"

#include <QCheckBox>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>

#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Model/EntryWords.h"
#include "CorvaneBrell/Window/DayText.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/SelectableText.h"
#include "CorvaneBrell/Window/TickBox.h"

namespace brell {

namespace {

QString whatOf(const ActiveChange& change) {
    const JournalEntry& entry = change.entry;
    return qt(change.words) + '\n' +
           QObject::tr("Since %1 at %2, on macOS %3")
               .arg(dayText(entry.appliedAt), clockText(entry.appliedAt), qt(excerpt(entry.macOSVersion)));
}

std::vector<RowBadge> noticesOf(const ActiveChange& change) {
    std::vector<RowBadge> notices;
    if (change.isInterrupted)
        notices.push_back(
            {change.refusal
                 ? QObject::tr("Interrupted before it was finished.")
                 : QObject::tr("Interrupted before it was finished. Restoring puts the originals back."),
             "bolt.slash",
             Tone::caution,
             {}});
    if (const auto failure = failureWords(change.entry))
        notices.push_back({qt(*failure), "exclamationmark.triangle", Tone::caution, {}});
    // Of an agent without its capture its words say so.
    if (change.refusal && !change.entry.lacksCapture())
        notices.push_back({qt(*change.refusal), "exclamationmark.triangle", Tone::caution, {}});
    if (change.notOffered) notices.push_back({qt(*change.notOffered), "info.circle", Tone::plain, {}});
    if (change.otherMacOS) notices.push_back({qt(*change.otherMacOS), "info.circle", Tone::plain, {}});
    return notices;
}

}  // namespace

ChangeRow::ChangeRow(AppModel& model, Kind kind, QWidget* parent)
    : Row({}, Columns::control, parent),
      restore_(actionButton(tr("Restore"), "arrow.uturn.backward")),
      more_(quietButton("ellipsis.circle", this)) {
    auto* buttons = new QWidget;
    auto* column = new QVBoxLayout(buttons);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    if (kind == Kind::toDecide) {
        tick_ = new TickBox(tr("Select"));
        column->addWidget(tick_);
        connect(tick_, &QCheckBox::toggled, this, &ChangeRow::ticked);
    }
    auto* line = new QHBoxLayout;
    line->setSpacing(6);
    line->addWidget(restore_);
    line->addWidget(more_);
    column->addLayout(line);
    QSizePolicy kept = more_->sizePolicy();
    kept.setRetainSizeWhenHidden(true);  // so that all buttons are one width
    more_->setSizePolicy(kept);
    auto* menu = new QMenu(more_);
    undoSince_ = menu->addAction(tr("Undo Everything Since..."));
    connect(more_, &QToolButton::clicked, this,
            [this, menu] { menu->popup(more_->mapToGlobal(more_->rect().bottomLeft())); });
    setControl(buttons);
    setDetails([this] { return makeDetails(); });
    connect(restore_, &QPushButton::clicked, this, [this, &model] { model.askRestore(entryID()); });
    connect(undoSince_, &QAction::triggered, this, [this, &model] { model.askUndoSince(entryID()); });
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
    if (lines_) lines_->setLines(qt(record.lines));
    showButtons();
}

QWidget* ChangeRow::makeDetails() {
    lines_ = new SelectableText(tr("Keys of %1").arg(title()), SelectableText::Look::monospace);
    lines_->setLines(qt(record_->lines));
    return lines_;
}

void ChangeRow::showButtons() {
    restore_->setAccessibleName(tr("Restore %1").arg(title()));
    restore_->setAccessibleDescription(tr("Back to: %1").arg(qt(brell::wayBack(record_->entry))));
    restore_->setEnabled(!record_->isLocked && !record_->entry.lacksCapture());
    more_->setAccessibleName(tr("More for %1").arg(title()));
    more_->setToolTip(tr("More"));
    more_->setEnabled(!record_->isLocked);
    more_->setVisible(!record_->isNewest);  // where it would be the same as Restore
    if (!tick_) return;
    tick_->setAccessibleName(tr("Select %1").arg(title()));
    tick_->setAccessibleDescription(tr("For the buttons below the list."));
    tick_->setEnabled(!record_->isLocked);
}

}  // namespace brell
