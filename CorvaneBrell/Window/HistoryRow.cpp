#include "CorvaneBrell/Window/HistoryRow.h"

#include <QHBoxLayout>

namespace brell {

namespace {

struct Sign {
    std::string_view symbol;
    Tone tone;
};

Sign signOf(EntryStatus event) {
    switch (event) {
        case EntryStatus::capturing: return {"bolt.slash", Tone::caution};
        case EntryStatus::applied: return {"checkmark.circle", Tone::positive};
        case EntryStatus::failed: return {"xmark.circle", Tone::critical};
        case EntryStatus::restored: break;
    }
    return {"arrow.uturn.backward", Tone::plain};
}

}  // namespace

HistoryRow::HistoryRow(QWidget* parent)
    : QWidget(parent),
      symbol_(new SymbolView("clock", Tone::plain, 15)),
      clock_(new Paragraph({}, Paragraph::Look::secondary)),
      day_(new Paragraph({}, Paragraph::Look::heading)),
      words_(new Paragraph) {
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(16, 6, 12, 6);
    line->setSpacing(10);
    line->addWidget(symbol_, 0, Qt::AlignTop);
    line->addWidget(clock_, 0, Qt::AlignTop);
    line->addWidget(words_, 1);
    line->addWidget(day_, 1);
    clock_->setFixedWidth(clock_->fontMetrics().horizontalAdvance("00:00 "));
}

void HistoryRow::setRecord(const Record& record) {
    if (record_ == record) return;
    record_ = record;
    const bool isDay = !record.day.isEmpty();
    const Sign sign = signOf(record.event);
    symbol_->setSymbol(sign.symbol, sign.tone);
    clock_->setText(record.clock);
    words_->setText(record.words);
    day_->setText(record.day);
    symbol_->setVisible(!isDay);
    clock_->setVisible(!isDay);
    words_->setVisible(!isDay);
    day_->setVisible(isDay);
    setAccessibleName(isDay ? record.day : record.clock + " " + record.words);
}

}  // namespace brell
