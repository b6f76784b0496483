#include "CorvaneBrell/Window/GrowingCard.h"

#include "CorvaneBrell/Window/SelectableText.h"

namespace brell {

GrowingCard::GrowingCard(std::size_t all, std::size_t batch, std::size_t rowLength, MakeRow makeRow,
                         QWidget* parent)
    : RowColumn({}, batch, parent), all_(all), rowLength_(rowLength), makeRow_(std::move(makeRow)) {
    connect(this, &RowColumn::moreWanted, this, &GrowingCard::grow);
    grow();
}

void GrowingCard::grow() {
    const Rearrangement rearrangement(*this);
    while (shown_ < std::min(all_, limit())) {
        const std::size_t count = std::min(rowLength_, std::min(all_, limit()) - shown_);
        put(rows_++, makeRow_(shown_, count));
        shown_ += count;
    }
    setCounts(shown_, all_);
}

GrowingCard* rowCard(std::size_t all, const std::function<QWidget*(std::size_t)>& makeRow, QWidget* parent) {
    return new GrowingCard(
        all, RowColumn::usualBatch, 1, [makeRow](std::size_t first, std::size_t) { return makeRow(first); },
        parent);
}

GrowingCard* lineCard(const QString& name, const QStringList& lines, QWidget* parent) {
    constexpr std::size_t batch = 300;
    const auto all = static_cast<std::size_t>(lines.size());
    const auto makeRow = [name, lines](std::size_t first, std::size_t count) {
        auto* text = new SelectableText(name, SelectableText::Look::monospace);
        text->setLines(lines.mid(static_cast<qsizetype>(first), static_cast<qsizetype>(count)));
        auto* padding = new QWidget;
        auto* box = new QVBoxLayout(padding);
        box->setContentsMargins(12, 8, 12, 8);
        box->addWidget(text);
        return padding;
    };
    return new GrowingCard(all, batch, batch, makeRow, parent);
}

}  // namespace brell
