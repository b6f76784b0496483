#include "CorvaneBrell/Window/HistoryList.h"

#include "CorvaneBrell/Window/DayText.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/QtText.h"

namespace brell {

HistoryList::HistoryList(AppModel& model, QWidget* parent)
    : QWidget(parent),
      model_(model),
      range_(new ChoiceBox),
      nothing_(new Paragraph(tr("Nothing is recorded for this time."), Paragraph::Look::secondary)),
      events_(new RecordList<HistoryRow>({}, [] { return new HistoryRow; })) {
    range_->setAccessibleName(tr("How far back the history goes"));
    range_->addItem(tr("7 days"), 7);
    range_->addItem(tr("30 days"), 30);
    range_->addItem(tr("Everything"));
    range_->setCurrentIndex(2);  // as the model starts
    connect(range_, &QComboBox::activated, this, [this] {
        const QVariant days = range_->currentData();
        model_.loadHistory(days.isValid() ? std::optional(days.toInt()) : std::nullopt);
    });
    connect(events_, &RowColumn::moreWanted, this, &HistoryList::showFirst);

    auto* head = new QHBoxLayout;
    head->addWidget(sectionHeading(tr("History")), 0, Qt::AlignVCenter);
    head->addStretch(1);
    head->addWidget(range_);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(7);
    column->addLayout(head);
    column->addWidget(nothing_);
    column->addWidget(events_);
}

void HistoryList::refresh() {
    nothing_->setVisible(model_.state().history->empty());
    showFirst();
}

void HistoryList::showFirst() {
    const std::vector<ToldLine>& history = *model_.state().history;
    std::vector<HistoryEvent> events;
    QString day;
    const std::size_t shown = std::min(history.size(), events_->limit());
    for (std::size_t i = 0; i < shown; ++i) {
        const ToldLine& line = history[i];
        const QString itsDay = dayText(line.at);
        const std::string key = std::to_string(history.size() - i);  // the same when newer ones come
        if (itsDay != day) events.push_back({"day above " + key, itsDay, {}, {}, line.event});
        day = itsDay;
        events.push_back(
            {key, {}, clockText(line.at), tr("%1: %2").arg(qt(line.title), qt(line.words)), line.event});
    }
    events_->setRecords(events, events.size() + history.size() - shown);
}

}  // namespace brell
