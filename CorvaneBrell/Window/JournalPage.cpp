#include "CorvaneBrell/Window/JournalPage.h"

#include <QGridLayout>
#include <QPushButton>
#include <algorithm>
#include <functional>

#include "CorvaneBrell/Model/TerminalCommands.h"
#include "CorvaneBrell/Model/ValueWords.h"
#include "CorvaneBrell/Window/CopyButton.h"
#include "CorvaneBrell/Window/FileActions.h"
#include "CorvaneBrell/Window/HistoryList.h"
#include "CorvaneBrell/Window/QtText.h"

namespace brell {

JournalPage::JournalPage(AppModel& model, QWidget* parent)
    : Page(qt(title(Screen::journal)), qt(purpose(Screen::journal)), parent),
      model_(model),
      restoreAll_(actionButton(tr("Restore All"), "arrow.uturn.backward")),
      summary_(new Paragraph),
      drifted_(new DecisionSection(
          model, tr("No longer in force"),
          tr("macOS or another tool changed these since. Applying again puts back what "
             "Brell wrote and keeps the first original. Keeping theirs writes nothing: what is "
             "there now stays, and the change is closed."))),
      refused_(new DecisionSection(model, tr("Cannot be put back"),
                                   tr("Brell can't undo these; each one says why. Keeping them unchanged "
                                      "writes nothing: what is there "
                                      "now stays, and the change is closed."))),
      active_(new RecordList<ChangeRow>(tr("Active changes"),
                                        [this] { return new ChangeRow(model_, ChangeRow::Kind::inForce); })),
      files_(fileActions()),
      history_(new HistoryList(model)) {
    restoreAll_->setAccessibleDescription(tr("Shows what it will put back and asks first."));
    connect(restoreAll_, &QPushButton::clicked, this, [this] { model_.askRestoreAll(); });
    connect(active_, &RowColumn::moreWanted, this, &JournalPage::showChanges);
    drifted_->addAction(tr("Apply Again"), tr("Apply %1 Again"), &AppModel::applyAgain,
                        &ChangeRow::canBeMadeAgain);
    drifted_->addAction(tr("Keep Theirs"), tr("Keep Theirs for %1"), &AppModel::keepTheirs);
    refused_->addAction(tr("Keep Unchanged"), tr("Keep %1 Unchanged"), &AppModel::keepTheirs);
    for (DecisionSection* section : {drifted_, refused_})
        connect(section, &DecisionSection::moreWanted, this, &JournalPage::showChanges);
    tools()->addWidget(restoreAll_);
    setHeadLine(summary_);
    for (QWidget* part : std::initializer_list<QWidget*>{drifted_, refused_, active_, files_, history_})
        content()->addWidget(part);
    model_.loadAgentDrift();
}

QWidget* JournalPage::fileActions() {
    auto* section = new QWidget;
    auto* column = new QVBoxLayout(section);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(7);
    column->addWidget(sectionHeading(tr("Report and restore script")));
    auto* buttons = new QGridLayout;
    buttons->setSpacing(8);
    buttons->setColumnStretch(2, 1);
    column->addLayout(buttons);
    const auto add = [&](int place, QPushButton* button) {
        buttons->addWidget(button, place / 2, place % 2);
    };
    const auto addAction = [&](int place, const QString& text, void (*action)(AppModel&, QWidget*)) {
        auto* button = actionButton(text, "doc.text");
        connect(button, &QPushButton::clicked, this, [this, action] { action(model_, this); });
        add(place, button);
    };
    addAction(0, tr("Save Report..."), FileActions::saveReport);
    addAction(1, tr("Save Restore Script..."), FileActions::saveRestoreScript);
    copyCommands_ = copyButton(tr("Copy as Terminal Command"), tr("all active changes"),
                               [this] { return terminalCommands(); });
    copyCommands_->setToolTip(tr("For zsh and bash."));
    add(2, copyCommands_);
    addAction(3, tr("Show Restore Script"), FileActions::showRestoreScript);
    return section;
}

void JournalPage::refresh(const Changes& changed) {
    // The login items tell what their agents are called.
    if (changed.contains(Topic::journal) || changed.contains(Topic::loginItems)) showChanges();
    if (changed.contains(Topic::history)) history_->refresh();
}

void JournalPage::showChanges() {
    const bool isAnyActive = model_.changedCount(Screen::journal) > 0;
    std::vector<const DriftedEntry*> apart = toDecide();
    const auto refused = std::stable_partition(apart.begin(), apart.end(),
                                               [](const DriftedEntry* one) { return !one->refusal; });
    showToDecide(*drifted_, {apart.begin(), refused});
    showToDecide(*refused_, {refused, apart.end()});
    showActive(apart);
    showSummary(static_cast<std::size_t>(refused - apart.begin()),
                static_cast<std::size_t>(apart.end() - refused));
    restoreAll_->setEnabled(isAnyActive && !isLocked());
    copyCommands_->setEnabled(isAnyActive);
    // A throw-away journal is not asked.
    history_->setVisible(!isLocked());
    files_->setVisible(!isLocked());
}

void JournalPage::showSummary(std::size_t drifted, std::size_t refused) {
    const AppState& state = model_.state();
    const std::size_t active = model_.changedCount(Screen::journal);
    QStringList parts{active == 1 ? tr("1 active change") : tr("%1 active changes").arg(active)};
    if (drifted > 0) parts << tr("%1 of them no longer in force").arg(drifted);
    if (refused > 0) parts << tr("%1 of them cannot be put back").arg(refused);
    if (const std::size_t foreign = foreignCount())
        parts << tr("%1 of them perhaps from another Mac or account").arg(foreign);
    if (!state.interrupted.empty()) parts << tr("%1 interrupted").arg(state.interrupted.size());
    summary_->setText(active > 0 ? parts.join(", ") + "." : tr("No active change."));
    if (active > 0) return setEmptyState({});
    if (state.isLeaving)
        setEmptyState(tr("Brell is being left, so there is nothing to show here."));
    else if (isLocked())
        setEmptyState(tr("The change journal can't be read, so there is nothing to show here."));
    else if (state.entries.empty())
        setEmptyState(
            tr("Brell has changed nothing yet. Every change will be listed here, with the way back."));
    else
        setEmptyState(tr("No change is active: every setting Brell changed is back to what it was."));
}

std::size_t JournalPage::foreignCount() const {
    const std::vector<JournalEntry>& entries = model_.state().entries;
    return static_cast<std::size_t>(std::count_if(entries.begin(), entries.end(), [this](const auto& entry) {
        return entry.isActive() && cameFromElsewhere(entry, model_.catalog().home(), model_.macOSVersion());
    }));
}

// A change that is restored already stays in the list of drifted agents until they are read again.
std::vector<const DriftedEntry*> JournalPage::toDecide() const {
    const AppState& state = model_.state();
    std::vector<const DriftedEntry*> changes;
    for (const DriftedEntry& drifted : state.drifted) changes.push_back(&drifted);
    if (state.driftedAgents.empty()) return changes;
    std::set<Uuid> active;
    for (const JournalEntry& entry : state.entries)
        if (entry.isActive()) active.insert(entry.id);
    for (const DriftedEntry& agent : state.driftedAgents)
        if (active.contains(agent.entry.id)) changes.push_back(&agent);
    return changes;
}

std::optional<Uuid> JournalPage::newestActive() const {
    const std::vector<JournalEntry>& entries = model_.state().entries;
    const auto newest = std::find_if(entries.begin(), entries.end(), std::mem_fn(&JournalEntry::isActive));
    return newest == entries.end() ? std::nullopt : std::optional(newest->id);
}

// Of one that is in force.
ActiveChange JournalPage::activeChange(const JournalEntry& entry, bool isNewest) const {
    const std::vector<JournalEntry>& interrupted = model_.state().interrupted;
    const bool isInterrupted = std::any_of(interrupted.begin(), interrupted.end(),
                                           [&](const JournalEntry& one) { return one.id == entry.id; });
    return {entry,
            model_.titles().of(entry),
            changeWords(entry, model_.catalog()),
            changeLines(entry),
            originWords(entry, model_.catalog().home(), model_.macOSVersion()),
            isInterrupted,
            isNewest,
            isLocked(),
            whyOnlyRestored(entry, model_.catalog(), model_.macOSMajor()),
            {}};
}

ActiveChange JournalPage::driftedChange(const DriftedEntry& drifted, bool isNewest) const {
    const JournalEntry& entry = drifted.entry;
    ActiveChange change = activeChange(entry, isNewest);
    const auto status = model_.state().statuses.find(entry.tweakID);
    const bool isKnown = status != model_.state().statuses.end();
    change.words =
        driftWords(entry, model_.catalog(), isKnown ? status->second.exact : std::vector<StoredValue>());
    change.lines = drifted.lines;
    change.notOffered = whyNotAgain(entry, model_.catalog(), model_.macOSMajor());
    return change;
}

void JournalPage::showToDecide(DecisionSection& section, const std::vector<const DriftedEntry*>& changes) {
    const std::optional<Uuid> newest = newestActive();
    std::vector<ActiveChange> first;
    for (const DriftedEntry* one : changes) {
        if (first.size() == section.limit()) break;
        const bool isNewest = one->entry.id == newest;
        first.push_back(one->refusal ? activeChange(one->entry, isNewest) : driftedChange(*one, isNewest));
        first.back().refusal = one->refusal;
    }
    section.setChanges(first, changes.size());
}

void JournalPage::showActive(const std::vector<const DriftedEntry*>& apart) {
    const std::optional<Uuid> newest = newestActive();
    std::set<Uuid> others;
    for (const DriftedEntry* one : apart) others.insert(one->entry.id);
    std::vector<ActiveChange> shown;
    std::size_t all = 0;
    for (const JournalEntry& entry : model_.state().entries) {
        if (!entry.isActive() || others.contains(entry.id)) continue;
        if (all++ < active_->limit()) shown.push_back(activeChange(entry, entry.id == newest));
    }
    active_->setRecords(shown, all);
}

QString JournalPage::terminalCommands() const {
    std::vector<JournalEntry> oldestFirst;
    const std::vector<JournalEntry>& entries = model_.state().entries;
    std::copy_if(entries.rbegin(), entries.rend(), std::back_inserter(oldestFirst),
                 [](const JournalEntry& entry) { return entry.isActive(); });
    return qt(commandsMaking(oldestFirst, model_.catalog()));
}

}  // namespace brell
