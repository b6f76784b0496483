// The row of one login item: its switch where Brell may use it, and what the item is.
#pragma once

#include <optional>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Window/Row.h"

class QVBoxLayout;

namespace brell {

class Switch;

struct ShownLoginItem {
    LoginItemRow row;
    std::optional<JournalEntry> change;  // ours, while it is active
    std::optional<std::string> drift;    // what was done to it since, outside Brell
    bool isInterrupted;                  // that change was never finished
    std::optional<std::string> refusal;  // why it can't be switched
    bool isLocked;                       // nothing can be changed at all
    JobFacts facts;
    bool isNew;  // since the last visit
    // launchd has the agent as the change left it.
    bool isInForce() const;
    bool operator==(const ShownLoginItem&) const = default;
};

class LoginItemView final : public Row {
    Q_OBJECT
public:
    using Record = ShownLoginItem;

    // The model must outlive the row.
    explicit LoginItemView(AppModel& model, QWidget* parent = nullptr);
    static const std::string& keyOf(const Record& record) { return record.row.id; }
    void setRecord(const Record& record);
    bool canShowAnother() const;

private:
    void showSwitch(bool isOffered, bool canSwitch);
    void showWayBack();
    QWidget* makeDetails();
    QLayout* fileActions();
    void fillDetails();

    AppModel& model_;
    std::optional<Record> record_;
    Switch* switch_ = nullptr;
    QVBoxLayout* detailsColumn_ = nullptr;
    QWidget* facts_ = nullptr;
};

}  // namespace brell
