// Records as rows of a card, below a heading: the first ones, and more when they are asked for. A row stays
// with its record and keeps its focus and its open details while others come and go.
#pragma once

#include <QPushButton>
#include <QWidget>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "CorvaneBrell/Window/Card.h"
#include "CorvaneBrell/Window/Paragraph.h"

namespace brell {

class RowColumn : public QWidget {
    Q_OBJECT
public:
    // Without a heading the card stands alone.
    explicit RowColumn(const QString& heading, QWidget* parent = nullptr);

    // How many records are wanted; moreWanted says that it has grown.
    std::size_t limit() const { return limit_; }

signals:
    void moreWanted();

protected:
    void put(int place, QWidget* row);
    void takeOut(QWidget* row);
    void setCounts(std::size_t shown, std::size_t all);

private:
    static constexpr std::size_t batch = 100;  // more rows at once would be felt as a pause
    std::size_t limit_ = batch;
    Card* card_;
    QPushButton* more_;
};

// A row type names its Record, has setRecord(record) and gives keyOf(record), which differs for each record.
template <class RowType>
class RecordList final : public RowColumn {
public:
    using Record = typename RowType::Record;

    RecordList(const QString& heading, std::function<RowType*()> makeRow, QWidget* parent = nullptr)
        : RowColumn(heading, parent), makeRow_(std::move(makeRow)) {}

    // Shows these, the first limit() of so many; without any the list hides.
    void setRecords(const std::vector<Record>& records, std::size_t all) {
        std::map<std::string, RowType*> before;
        before.swap(rows_);
        for (const Record& record : records)
            if (auto known = before.extract(RowType::keyOf(record))) rows_.insert(std::move(known));
        for (const auto& [key, row] : before) takeOut(row);
        int place = 0;
        for (const Record& record : records) {
            RowType*& row = rows_[RowType::keyOf(record)];
            if (!row) row = makeRow_();
            row->setRecord(record);
            put(place++, row);
        }
        setCounts(records.size(), all);
    }
    void setRecords(const std::vector<Record>& records) { setRecords(records, records.size()); }

    // nullptr where no such record is shown.
    RowType* row(const std::string& key) const {
        const auto found = rows_.find(key);
        return found == rows_.end() ? nullptr : found->second;
    }
    const std::map<std::string, RowType*>& rows() const { return rows_; }

private:
    std::function<RowType*()> makeRow_;
    std::map<std::string, RowType*> rows_;
};

}  // namespace brell
