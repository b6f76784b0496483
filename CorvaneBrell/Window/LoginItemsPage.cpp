#include "CorvaneBrell/Window/LoginItemsPage.h"

#include <QPushButton>
#include <algorithm>

#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Model/LoginItemWords.h"
#include "CorvaneBrell/Window/PaneButton.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/SearchField.h"
#include "CorvaneBrell/Window/TaskListLine.h"
#include "CorvaneBrell/Window/TickBox.h"

namespace brell {

LoginItemsPage::LoginItemsPage(AppModel& model, QWidget* parent)
    : Page(qt(title(Screen::loginItems)), qt(purpose(Screen::loginItems)), parent),
      model_(model),
      filter_(searchField(tr("Filter"), tr("Filter the login items"))),
      newOnly_(new TickBox({})),
      taskList_(new TaskListLine(model)),
      emptyAction_(addEmptyAction({})) {
    addTools();
    content()->addWidget(taskList_);
    addGroups();
    connect(emptyAction_, &QPushButton::clicked, this, [this] { takeEmptyAction(); });
    model_.loadLoginItems();
}

void LoginItemsPage::addTools() {
    connect(filter_, &QLineEdit::textChanged, this, [this] { showItems(); });
    auto* again = actionButton(tr("Refresh"), "arrow.clockwise");
    again->setAccessibleName(tr("Refresh the login items"));
    connect(again, &QPushButton::clicked, this, [this] { model_.loadLoginItems(); });
    connect(newOnly_, &QCheckBox::toggled, this, [this] { showItems(); });
    newOnly_->setMinimumHeight(28);
    newOnly_->setFixedWidth(TickBox(tr("New %1").arg(9999)).sizeHint().width());
    auto* head = new QWidget;
    auto* line = new QHBoxLayout(head);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(12);
    line->addWidget(filter_, 1);
    line->addWidget(newOnly_);
    setHeadLine(head);
    tools()->addWidget(again);
    tools()->addWidget(paneButton(*settingsLink(Screen::loginItems), tr("General, then Login Items")));
}

void LoginItemsPage::addGroups() {
    const auto add = [&](LoginItemBadge badge, bool isRefused, const QString& title) {
        auto* group = new Group(title, [this] { return new LoginItemView(model_); });
        connect(group, &RowColumn::moreWanted, this, [this] { showItems(); });
        content()->addWidget(group);
        sections_.push_back({badge, isRefused, group});
    };
    add(LoginItemBadge::toggleable, false, qt(text(LoginItemBadge::toggleable)));
    add(LoginItemBadge::toggleable, true, tr("Brell does not turn these off"));
    for (const LoginItemBadge badge : {LoginItemBadge::adminOnly, LoginItemBadge::appManaged})
        add(badge, false, qt(text(badge)));
}

void LoginItemsPage::refresh(const Changes& changed) {
    taskList_->refresh();
    if (changed.contains(Topic::loginItems)) collectTexts();
    if (changed.contains(Topic::loginItems) || changed.contains(Topic::journal)) showItems();
    showEmptyState();
}

// Once for every reading: folding thousands of texts at each letter that is typed would be felt.
void LoginItemsPage::collectTexts() {
    texts_.clear();
    areNew_.clear();
    for (const LoginItemRow& row : model_.state().loginItems) {
        const std::string label = row.record ? row.record->label().value_or("") : std::string();
        const QString text =
            qt(row.title + '\n' + subtitleWords(row) + '\n' + label + '\n' + row.explanation.app);
        const JobFacts facts = factsOf(model_.state(), row);
        const std::string more = join(conditionWords(row, facts), "\n") + '\n' + join(facts.apps, "\n");
        texts_.push_back((text + '\n' + qt(more)).toCaseFolded());
        areNew_.push_back(model_.state().seenItems.isNew(row));
    }
    showNew();
}

// Always in its place, so that nothing moves when something new comes.
void LoginItemsPage::showNew() {
    const auto count = std::count(areNew_.begin(), areNew_.end(), true);
    newOnly_->setTitle(count > 0 ? tr("New %1").arg(count) : tr("New"));
    newOnly_->setEnabled(count > 0 || newOnly_->isChecked());
    newOnly_->setAccessibleDescription(count > 0 ? tr("Shows only what is new since your last visit.")
                                                 : tr("Nothing is new since your last visit."));
    newOnly_->setToolTip(newOnly_->accessibleDescription());
}

// For good; what only waits to be put back stays where it is.
bool LoginItemsPage::isRefused(const LoginItemRow& row) const {
    return row.badge == LoginItemBadge::toggleable && row.record &&
           model_.state().switchRefusals.contains(row.record->id());
}

void LoginItemsPage::showItems() {
    const std::vector<LoginItemRow>& items = model_.state().loginItems;
    if (texts_.size() != items.size()) collectTexts();
    const ShownLoginItems shown(model_.state());
    const QString wanted = filter_->text().trimmed().toCaseFolded();
    matching_ = 0;
    for (const Section& section : sections_) {
        std::vector<ShownLoginItem> first;
        std::size_t all = 0;
        for (std::size_t i = 0; i < items.size(); ++i)
            if (section.badge == items[i].badge && section.isRefused == isRefused(items[i]) &&
                texts_[i].contains(wanted) && (areNew_[i] || !newOnly_->isChecked()) &&
                all++ < section.group->limit())
                first.push_back(shown.of(items[i]));
        section.group->setRecords(first, all);
        matching_ += all;
    }
    showEmptyState();
}

void LoginItemsPage::showEmptyState() {
    const AppState& state = model_.state();
    if (matching_ > 0) return setEmptyState({});
    emptyAction_->setVisible(state.loginItemsLoaded);
    if (!state.loginItems.empty()) {
        setActionText(emptyAction_, tr("Show All"));
        setEmptyState(filter_->text().trimmed().isEmpty()
                          ? tr("No login item is new since your last visit.")
                          : (newOnly_->isChecked()
                                 ? tr("No new login item has “%1” in its name, label, app or state.")
                                 : tr("No login item has “%1” in its name, label, app or state."))
                                .arg(filter_->text().trimmed()));
    } else if (state.loginItemsLoaded) {
        setActionText(emptyAction_, tr("Read Again"));
        setEmptyState(tr("Nothing was found in the folders of launchd that starts by itself."));
    } else {
        setEmptyState(tr("The login items are being read."));
    }
}

void LoginItemsPage::takeEmptyAction() {
    if (model_.state().loginItems.empty()) return model_.loadLoginItems();
    filter_->clear();
    newOnly_->setChecked(false);
    filter_->setFocus();
}

}  // namespace brell
