// Everything that starts by itself, grouped by who can change it.
#pragma once

#include <QLineEdit>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Window/LoginItemView.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/RecordList.h"

namespace brell {

class TaskListLine;
class TickBox;

class LoginItemsPage final : public Page {
    Q_OBJECT
public:
    // The model must outlive the page.
    explicit LoginItemsPage(AppModel& model, QWidget* parent = nullptr);
    void refresh(const Changes& changed) override;

private:
    using Group = RecordList<LoginItemView>;
    struct Section {
        LoginItemBadge badge;
        bool isRefused;  // its items can't be switched
        Group* group;
    };

    void addTools();
    void addGroups();
    bool isRefused(const LoginItemRow& row) const;
    void collectTexts();
    void showItems();
    void showNew();
    void showEmptyState();
    void takeEmptyAction();

    AppModel& model_;
    QLineEdit* filter_;
    TickBox* newOnly_;
    TaskListLine* taskList_;
    QPushButton* emptyAction_;
    std::vector<Section> sections_;
    std::vector<QString> texts_;  // what the filter looks at, one for each item of the model
    std::vector<bool> areNew_;    // likewise
    std::size_t matching_ = 0;    // items that pass the filter
};

}  // namespace brell
