#include "CorvaneBrell/Window/ActiveChangeRow.h"

#include "CorvaneBrell/Model/EntryWords.h"
#include "CorvaneBrell/Window/DayText.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/WayBackButtons.h"

namespace brell {

namespace {

QString whatOf(const JournalEntry& entry) {
    QStringList lines = qt(changeLines(entry));
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
    : Row({}, parent), wayBack_(new WayBackButtons(model)) {
    setControl(wayBack_);
}

void ActiveChangeRow::setRecord(const Record& record) {
    if (record_ == record) return;
    record_ = record;
    const QString title = qt(record.title);
    setObjectName(qt(keyOf(record)));
    setTitle(title);
    setWhat(whatOf(record.entry));
    setNotices(noticesOf(record));
    wayBack_->setEntry(record.entry, title, record.isNewest, record.isLocked);
}

}  // namespace brell
