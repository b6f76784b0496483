// One active change of the journal, with the way back.
#pragma once

#include <optional>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Window/Row.h"

namespace brell {

class WayBackButtons;

struct ActiveChange {
    JournalEntry entry;
    std::string title;
    std::optional<std::string> otherMacOS;  // a sentence when it was made on another version
    bool isInterrupted;
    bool isNewest;
    bool isLocked;  // nothing can be changed at all
    bool operator==(const ActiveChange&) const = default;
};

class ActiveChangeRow final : public Row {
    Q_OBJECT
public:
    using Record = ActiveChange;

    // The model must outlive the row.
    explicit ActiveChangeRow(AppModel& model, QWidget* parent = nullptr);
    static std::string keyOf(const Record& record) { return record.entry.id.text(); }
    void setRecord(const Record& record);

private:
    std::optional<Record> record_;
    WayBackButtons* wayBack_;
};

}  // namespace brell
