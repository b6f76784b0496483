// One line of the history, or the day that the lines below it belong to.
#pragma once

#include <optional>

#include "BrellCore/Journal/History.h"
#include "CorvaneBrell/Window/Paragraph.h"
#include "CorvaneBrell/Window/Symbol.h"

namespace brell {

struct HistoryEvent {
    std::string key;  // differs for each
    QString day;      // of a heading; empty for a line
    QString clock;
    QString words;
    EntryStatus event;
    bool operator==(const HistoryEvent&) const = default;
};

class HistoryRow final : public QWidget {
    Q_OBJECT
public:
    using Record = HistoryEvent;

    explicit HistoryRow(QWidget* parent = nullptr);
    static const std::string& keyOf(const Record& record) { return record.key; }
    void setRecord(const Record& record);

private:
    std::optional<Record> record_;
    SymbolView* symbol_;
    Paragraph* clock_;
    Paragraph* day_;
    Paragraph* words_;
};

}  // namespace brell
