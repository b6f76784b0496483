// One change of ours that somebody changed since: it can be applied again or given up.
#pragma once

#include <QCheckBox>
#include <optional>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Window/Row.h"

namespace brell {

class WayBackButtons;

struct DriftedChange {
    JournalEntry entry;
    std::string title;
    std::vector<std::string> lines;  // what is there now, what was written and the original
    std::optional<std::string> otherMacOS;
    bool isNewest;
    bool isLocked;  // nothing can be changed at all
    bool operator==(const DriftedChange&) const = default;
};

class DriftedChangeRow final : public Row {
    Q_OBJECT
public:
    using Record = DriftedChange;

    // The model must outlive the row.
    explicit DriftedChangeRow(AppModel& model, QWidget* parent = nullptr);
    static std::string keyOf(const Record& record) { return record.entry.id.text(); }
    void setRecord(const Record& record);

    const Uuid& entryID() const { return record_->entry.id; }
    bool isTicked() const { return tick_->isChecked() && tick_->isEnabled(); }

signals:
    void ticked();

private:
    std::optional<Record> record_;
    QCheckBox* tick_;
    WayBackButtons* wayBack_;
};

}  // namespace brell
