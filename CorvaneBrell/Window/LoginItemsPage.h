// Everything that starts by itself, grouped by who can change it.
#pragma once

#include <QLineEdit>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Window/LoginItemView.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/RecordList.h"

namespace brell {

class ReadingLine;

class LoginItemsPage final : public Page {
    Q_OBJECT
public:
    // The model must outlive the page.
    explicit LoginItemsPage(AppModel& model, QWidget* parent = nullptr);
    void refresh(const Changes& changed) override;

private:
    using Group = RecordList<LoginItemView>;

    void addTools();
    void addGroups();
    void showItems();
    bool matchesFilter(const LoginItemRow& row) const;
    ShownLoginItem shown(const LoginItemRow& row) const;
    void showEmptyState();
    void takeEmptyAction();

    AppModel& model_;
    bool asked_ = false;
    QLineEdit* filter_;
    ReadingLine* reading_;
    QWidget* withoutDatabase_;
    QPushButton* emptyAction_;
    std::vector<std::pair<LoginItemBadge, Group*>> groups_;
    std::vector<JournalEntry> changes_;  // ours of agents that are active
    std::size_t matching_ = 0;           // items that pass the filter
};

}  // namespace brell
