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
    // More rows at once would be felt as a pause.
    static constexpr std::size_t usualBatch = 100;

    // Without a heading the card stands alone. A batch is what is shown at first, and how much more each
    // time that more is wanted.
    explicit RowColumn(const QString& heading, std::size_t batch = usualBatch, QWidget* parent = nullptr);

    // How many records are wanted; moreWanted says that it has grown.
    std::size_t limit() const { return limit_; }

signals:
    void moreWanted();

protected:
    // While it lives the rows are not laid out. Each one that came or changed would lay out the whole page.
    class Rearrangement {
    public:
        explicit Rearrangement(RowColumn& column);
        ~Rearrangement();
        Rearrangement(const Rearrangement&) = delete;
        Rearrangement& operator=(const Rearrangement&) = delete;

    private:
        QLayout& rows_;
    };

    void put(int place, QWidget* row);
    void takeOut(QWidget* row);
    void hideAway(QWidget* row);  // keeps it for later
    void setCounts(std::size_t shown, std::size_t all);

private:
    const std::size_t batch_;
    std::size_t limit_ = batch_;
    Card* card_;
    QPushButton* more_;
};

// A row type names its Record, has setRecord(record) and gives keyOf(record), which differs for each record.
// One that has canShowAnother() is used for other records while that says so: filling it costs less than
// making one.
template <class RowType>
class RecordList final : public RowColumn {
public:
    using Record = typename RowType::Record;

    RecordList(const QString& heading, std::function<RowType*()> makeRow, std::size_t batch = usualBatch)
        : RowColumn(heading, batch), makeRow_(std::move(makeRow)) {}

    // Shows these, the first limit() of so many; without any the list hides.
    void setRecords(const std::vector<Record>& records, std::size_t all) {
        arrange(records);
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
    void arrange(const std::vector<Record>& records) {
        const Rearrangement rearrangement(*this);
        std::map<std::string, RowType*> before;
        before.swap(rows_);
        for (const Record& record : records)
            if (auto known = before.extract(RowType::keyOf(record))) rows_.insert(std::move(known));
        int place = 0;
        for (const Record& record : records) {
            RowType*& row = rows_[RowType::keyOf(record)];
            if (!row) row = another(before);
            row->setRecord(record);
            put(place++, row);
        }
        for (const auto& [key, row] : before) setAside(row);
    }

    // One of those that are not needed any more, or a new one.
    RowType* another(std::map<std::string, RowType*>& left) {
        if constexpr (requires(const RowType& row) { row.canShowAnother(); })
            while (!left.empty()) {
                RowType* row = left.extract(left.begin()).mapped();
                if (row->canShowAnother()) return row;
                takeOut(row);
            }
        if (spare_.empty()) return makeRow_();
        RowType* row = spare_.back();
        spare_.pop_back();
        return row;
    }

    void setAside(RowType* row) {
        if constexpr (requires(const RowType& one) { one.canShowAnother(); })
            if (row->canShowAnother() && spare_.size() < usualBatch) {
                hideAway(row);
                spare_.push_back(row);
                return;
            }
        takeOut(row);
    }

    std::function<RowType*()> makeRow_;
    std::map<std::string, RowType*> rows_;
    std::vector<RowType*> spare_;
};

}  // namespace brell
