#include "CorvaneBrell/Window/LoginItemView.h"

#include <QApplication>
#include <QPushButton>
#include <QVBoxLayout>

#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Model/EntryWords.h"
#include "CorvaneBrell/Model/LoginItemWords.h"
#include "CorvaneBrell/Model/ValueWords.h"
#include "CorvaneBrell/Window/CopyButton.h"
#include "CorvaneBrell/Window/FactList.h"
#include "CorvaneBrell/Window/FileActions.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Switch.h"

namespace brell {

namespace {

// By what launchd has and the journal says, whatever the switch shows.
RowBadge badgeOf(const ShownLoginItem& item) {
    if (item.isInterrupted) return {QObject::tr("Interrupted"), "bolt.slash", Tone::caution, {}};
    if (item.isInForce())
        return item.row.isOn ? RowBadge{QObject::tr("On by Brell"), "checkmark.circle", Tone::positive, {}}
                             : RowBadge{QObject::tr("Off by Brell"), "minus.circle", Tone::positive, {}};
    if (item.change && item.change->status == EntryStatus::applied)
        return {QObject::tr("Changed outside Brell"), "exclamationmark.triangle", Tone::caution, {}};
    if (item.row.isOn && item.row.allowedInSystemSettings == false)
        return {QObject::tr("Not allowed"), "minus.circle", Tone::plain, {}};
    if (item.row.isOn) return {QObject::tr("On"), "checkmark.circle", Tone::positive, {}};
    return {QObject::tr("Off"), "minus.circle", Tone::plain, {}};
}

std::optional<RowBadge> badgeBeside(const ShownLoginItem& item) {
    const bool isOurs = item.isInterrupted || (item.change && item.change->status == EntryStatus::applied);
    // The switch says as much.
    if (item.row.badge == LoginItemBadge::toggleable && !isOurs) return std::nullopt;
    return badgeOf(item);
}

std::vector<RowBadge> noticesOf(const ShownLoginItem& item) {
    const LoginItemRow& row = item.row;
    std::vector<RowBadge> notices;
    if (item.isNew)
        notices.push_back({QObject::tr("It is new since your last visit."), "sparkles", Tone::accent, {}});
    for (const std::string& condition : conditionWords(row, item.facts))
        notices.push_back({qt(condition), "exclamationmark.triangle", Tone::caution, {}});
    if (row.explanation.isUpdater)
        notices.push_back({QObject::tr("It brings updates or security: turning it off costs protection."),
                           "shield",
                           Tone::plain,
                           {}});
    if (item.refusal) notices.push_back({qt(*item.refusal), "info.circle", Tone::plain, {}});
    return notices;
}

QString loadedText(const LoadedState& loaded) {
    if (loaded.isUnknown()) return QObject::tr("Not known");
    if (!loaded.isLoaded()) return QObject::tr("Not loaded");
    QStringList parts{QObject::tr("Loaded")};
    if (!loaded.state.empty()) parts << qt(loaded.state);
    if (loaded.pid) parts << QObject::tr("process %1").arg(*loaded.pid);
    if (loaded.runs)
        parts << (*loaded.runs == 1 ? QObject::tr("started once")
                                    : QObject::tr("started %1 times").arg(*loaded.runs));
    if (loaded.lastExitCode) parts << QObject::tr("last exit code %1").arg(*loaded.lastExitCode);
    return parts.join(", ");
}

// As the other facts do.
QString begunLarge(QString words) {
    if (!words.isEmpty()) words[0] = words[0].toUpper();
    return words;
}

FactList* factsOf(const ShownLoginItem& item) {
    const LoginItemRow& row = item.row;
    const AgentExplanation& explanation = row.explanation;
    auto* facts = new FactList;
    facts->add(QObject::tr("App"), qt(explanation.app));
    facts->add(QObject::tr("What it does"), qt(explanation.what));
    facts->add(QObject::tr("What stops"), qt(explanation.stops));
    facts->add(QObject::tr("Risk"), qt(label(explanation.risk)));
    facts->add(QObject::tr("Updater"),
               explanation.isUpdater ? QObject::tr("Yes, it keeps software up to date or protects the Mac")
                                     : QObject::tr("No"));
    facts->add(QObject::tr("Belongs to"), qt(join(item.facts.apps, ", ")));
    if (row.record) {
        facts->add(QObject::tr("Label"), qt(row.record->label().value_or("None")));
        facts->add(QObject::tr("File"), qt(row.record->plist.path));
        facts->add(QObject::tr("Runs"), qt(row.record->plist.executable().value_or("")));
        facts->add(QObject::tr("Starts"), begunLarge(qt(startWords(row.record->plist))));
        facts->add(QObject::tr("In launchd"), loadedText(row.record->loaded));
    }
    if (item.drift) facts->add(QObject::tr("Changed outside Brell"), qt(*item.drift));
    if (row.btm) {
        facts->add(QObject::tr("Developer"), qt(row.btm->developer.value_or("")));
        facts->add(QObject::tr("Place"), qt(row.btm->url.value_or("")));
    }
    return facts;
}

}  // namespace

LoginItemView::LoginItemView(AppModel& model, QWidget* parent)
    : Row({}, Columns::stateAndControl, parent), model_(model) {
    setDetails([this] { return makeDetails(); });
    connect(this, &Row::wayBackAsked, this, [this] { model_.askRestore(record_->change->id); });
}

void LoginItemView::setRecord(const Record& record) {
    setObjectName(qt(record.row.id));
    if (record_ == record) return;
    record_ = record;
    setTitle(qt(record.row.title));
    setWhat(qt(subtitleWords(record.row)));
    setBadge(badgeBeside(record));
    const bool isOffered = record.row.badge == LoginItemBadge::toggleable;
    setNotices(noticesOf(record));
    setNotes(qt(riskWords(record.row.explanation.risk)));
    showSwitch(isOffered, !record.refusal && !record.isLocked);
    showWayBack();
    if (detailsColumn_) fillDetails();
}

void LoginItemView::showWayBack() {
    if (!record_->change) return setWayBack(std::nullopt);
    setWayBack(RowWayBack{qt(brell::wayBack(*record_->change)), !record_->isLocked});
}

// Not what the user is at.
bool LoginItemView::canShowAnother() const {
    return !details() && !isAncestorOf(QApplication::focusWidget());
}

void LoginItemView::showSwitch(bool isOffered, bool canSwitch) {
    const LoginItemRow& row = record_->row;
    if (isOffered && !switch_) {
        switch_ = new Switch;
        connect(switch_, &Switch::clicked, this,
                [this] { model_.askAgents({record_->row.id}, !record_->row.isOn); });
        setControl(switch_);
    }
    if (!switch_) return;
    switch_->setVisible(isOffered);
    switch_->setPosition(row.isOn);
    switch_->setEnabled(canSwitch);
    switch_->setAccessibleName(qt(row.title));
    switch_->setAccessibleDescription(
        tr("%1. Shows the commands and asks first; takes effect at once.").arg(qt(subtitleWords(row))));
}

QWidget* LoginItemView::makeDetails() {
    auto* holder = new QWidget;
    detailsColumn_ = new QVBoxLayout(holder);
    detailsColumn_->setContentsMargins(0, 0, 0, 0);
    fillDetails();
    return holder;
}

// Of its job file.
QLayout* LoginItemView::fileActions() {
    const LaunchAgentRecord& job = *record_->row.record;
    auto* line = new QHBoxLayout;
    line->setSpacing(8);
    auto* show = actionButton(tr("Show in Finder"), "folder");
    show->setAccessibleName(tr("Show in Finder: %1").arg(title()));
    connect(show, &QPushButton::clicked, this,
            [this, file = job.plist.path] { FileActions::showInFinder(file, this); });
    line->addWidget(show);
    if (job.label())
        line->addWidget(copyButton(tr("Copy Label"), title(), [label = *job.label()] { return qt(label); }));
    line->addStretch(1);
    return line;
}

void LoginItemView::fillDetails() {
    if (facts_) {
        facts_->hide();
        facts_->deleteLater();  // its button may be what was clicked
    }
    facts_ = new QWidget;
    auto* column = new QVBoxLayout(facts_);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(10);
    column->addWidget(factsOf(*record_));
    if (record_->row.record) column->addLayout(fileActions());
    detailsColumn_->addWidget(facts_);
}

}  // namespace brell
