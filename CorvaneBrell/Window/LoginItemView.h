// The row of one login item: its switch where Brell may use it, and what the item is.
#pragma once

#include <optional>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Model/ShownLoginItem.h"
#include "CorvaneBrell/Window/Row.h"

class QVBoxLayout;

namespace brell {

class Switch;

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
