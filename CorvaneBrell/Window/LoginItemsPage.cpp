#include "CorvaneBrell/Window/LoginItemsPage.h"

#include <QPushButton>

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
        const JobFacts facts = factsOf(row);
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

JobFacts LoginItemsPage::factsOf(const LoginItemRow& row) const {
    const auto& facts = model_.state().jobFacts;
    const auto known = row.record ? facts.find(row.record->id()) : facts.end();
    return known == facts.end() ? JobFacts() : known->second;
}

LoginItemsPage::OwnChanges LoginItemsPage::ownChanges() const {
    OwnChanges changes;
    for (const JournalEntry& entry : model_.state().entries)
        if (entry.agent && entry.isActive()) changes.active.emplace(entry.tweakID, &entry);
    for (const JournalEntry& entry : model_.state().interrupted) changes.interrupted.insert(entry.id);
    for (const DriftedEntry& drift : model_.state().driftedAgents)
        changes.drifted.emplace(drift.entry.id, &drift.lines.front());
    return changes;
}

// For good; what only waits to be put back stays where it is.
bool LoginItemsPage::isRefused(const LoginItemRow& row) const {
    return row.badge == LoginItemBadge::toggleable && row.record &&
           model_.state().switchRefusals.contains(row.record->id());
}

void LoginItemsPage::showItems() {
    const std::vector<LoginItemRow>& items = model_.state().loginItems;
    if (texts_.size() != items.size()) collectTexts();
    const OwnChanges changes = ownChanges();
    const QString wanted = filter_->text().trimmed().toCaseFolded();
    matching_ = 0;
    for (const Section& section : sections_) {
        std::vector<ShownLoginItem> first;
        std::size_t all = 0;
        for (std::size_t i = 0; i < items.size(); ++i)
            if (section.badge == items[i].badge && section.isRefused == isRefused(items[i]) &&
                texts_[i].contains(wanted) && (areNew_[i] || !newOnly_->isChecked()) &&
                all++ < section.group->limit())
                first.push_back(shown(i, changes));
        section.group->setRecords(first, all);
        matching_ += all;
    }
    showEmptyState();
}

ShownLoginItem LoginItemsPage::shown(std::size_t place, const OwnChanges& changes) const {
    const AppState& state = model_.state();
    const LoginItemRow& row = state.loginItems[place];
    ShownLoginItem item{row,          std::nullopt,    std::nullopt, false,
                        std::nullopt, isLocked(state), factsOf(row), areNew_[place]};
    // An item that is not the user's own may have the same label.
    if (!row.record || row.record->scope != AgentScope::user) return item;
    if (!row.record->label() && !row.record->plist.leadsTo) return item;
    if (const auto refusal = state.switchRefusals.find(row.record->id());
        refusal != state.switchRefusals.end())
        item.refusal = refusal->second;
    const auto change = changes.active.find(agentTweakID(row.record->label().value_or("")));
    if (change == changes.active.end()) return item;
    item.change = *change->second;
    if (const auto drift = changes.drifted.find(item.change->id); drift != changes.drifted.end())
        item.drift = *drift->second;
    item.isInterrupted = changes.interrupted.contains(item.change->id);
    if (item.isInterrupted)
        item.refusal = utf8(tr("It was interrupted. Put it back first; then it can be switched again."));
    else if (item.change->status == EntryStatus::applied && !item.isInForce())
        item.refusal =
            utf8(tr("Somebody else switched it since Brell did. Put it back first; then it can be "
                    "switched again."));
    return item;
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

// To one that stands so far down that it is not shown with the first ones by the filter.
bool LoginItemsPage::lead(const QString& id) {
    filter_->clear();
    newOnly_->setChecked(false);
    if (Page::lead(id)) return true;
    for (const LoginItemRow& row : model_.state().loginItems)
        if (qt(row.id) == id)
            filter_->setText(qt(excerpt(row.record ? row.record->label().value_or(row.title) : row.title)));
    return Page::lead(id);
}

void LoginItemsPage::takeEmptyAction() {
    if (model_.state().loginItems.empty()) return model_.loadLoginItems();
    filter_->clear();
    newOnly_->setChecked(false);
    filter_->setFocus();
}

}  // namespace brell
