// Shows what a restore puts back, or a last action undoes, before it is done. What others changed since
// stands in a section of its own with a box each; nothing is ticked at first.

#include <functional>
#include <utility>

#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/Paragraph.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Sheets/RequestSheet.h"
#include "CorvaneBrell/Window/Sheets/Sheets.h"
#include "CorvaneBrell/Window/TickBox.h"

namespace brell {

namespace {

// One setting that others changed, and nothing else.
bool isAlone(const RestoreRequest& request) {
    return request.changes.isAboutOne() && request.steps.empty();
}

QString titleOf(const RestoreRequest& request) {
    return qt(isAlone(request) ? request.changes.title() : request.title);
}

QString explanationOf(const RestoreRequest& request) {
    const DriftRequest& changes = request.changes;
    if (changes.undoing)
        return QObject::tr(
            "This undoes the last change of this session. These are the keys it changes and the "
            "commands it runs.");
    if (!request.again.empty())
        return QObject::tr(
            "This puts back what was there before Brell, and then makes these changes again. These are the "
            "keys it changes and the commands it runs.");
    if (isAlone(request)) return qt(changes.explanation());
    const std::size_t all = changes.others.size() + changes.entries.size();
    if (all == 0)
        return QObject::tr("None of this can be put back. The Journal page offers to keep it unchanged.");
    if (all == 1) return QObject::tr("This puts back what was there before Brell changed it.");
    const std::size_t others = changes.others.size();
    if (others == 0) return QObject::tr("Only what is ticked is put back.");
    if (others == 1) return QObject::tr("This undoes 1 change, and puts back what was there before.");
    return QObject::tr("This undoes %1 changes, the latest first, and puts back what was there before.")
        .arg(others);
}

// Commands are in plain sight, keys where they are asked for.
QWidget* stepRow(const RestoreStep& step) {
    const QString title = qt(step.title);
    return sheetRow({new Paragraph(title, Paragraph::Look::heading),
                     new Paragraph(qt(step.words), Paragraph::Look::secondary),
                     step.runsCommands ? keyLines(QObject::tr("What is done to %1").arg(title), step.lines)
                                       : forExperts(title, step.lines)});
}

class RestoreSheet final : public RequestSheet {
public:
    RestoreSheet(AppModel& model, QWidget* window, const RestoreRequest& request);
    RestoreSheet(AppModel& model, QWidget* window, const DriftRequest& request);

private:
    using Confirm = void (AppModel::*)(const std::set<Uuid>& ticked);

    void addDrifted(const DriftRequest& changes);
    QWidget* driftedRow(const DriftedEntry& drifted, bool isToBeTicked);
    void addConfirmation(const DriftRequest& changes, Confirm confirm);
    void showCount();
    std::set<Uuid> ticked() const;

    std::size_t others_ = 0;                        // that are restored whatever is ticked
    QPushButton* restore_ = nullptr;                // where it says how many it restores
    std::vector<std::pair<Uuid, TickBox*>> ticks_;  // of the rows that are shown
};

RestoreSheet::RestoreSheet(AppModel& model, QWidget* window, const RestoreRequest& request)
    : RequestSheet(model, window, titleOf(request), explanationOf(request), &AppModel::cancelRestore) {
    if (!isAlone(request) && !request.changes.entries.empty()) {
        content()->addWidget(sectionHeading(qt(request.changes.title())));
        content()->addWidget(new Paragraph(qt(request.changes.explanation()), Paragraph::Look::secondary));
    }
    addDrifted(request.changes);
    if (!request.changes.entries.empty() && !request.steps.empty())
        content()->addWidget(sectionHeading(tr("As Brell left them")));
    addCard(request.steps.size(),
            [steps = request.steps](std::size_t place) { return stepRow(steps[place]); });
    if (request.again.empty())
        addConfirmation(request.changes, &AppModel::confirmRestore);
    else
        addAnswers(tr("Apply Again"), [this] { this->model().confirmRestore(); });
}

RestoreSheet::RestoreSheet(AppModel& model, QWidget* window, const DriftRequest& request)
    : RequestSheet(model, window, qt(request.title()), qt(request.explanation()), &AppModel::cancelDrift) {
    addDrifted(request);
    const auto others = static_cast<int>(request.others.size());
    if (others > 0)
        addFootnote(others == 1 ? tr("1 other change is restored, too.")
                                : tr("%1 other changes are restored, too.").arg(others));
    if (const auto& pending = request.pendingAfterDrift)
        addNote("info.circle", Tone::plain,
                tr("When it is restored, Brell changes %1 as you asked.").arg(qt(pending->tweak.title)));
    addConfirmation(request, &AppModel::confirmDrift);
}

void RestoreSheet::addDrifted(const DriftRequest& changes) {
    const bool areTicked = !changes.isAboutOne();
    addCard(changes.entries.size(), [this, areTicked, entries = changes.entries](std::size_t place) {
        return driftedRow(entries[place], areTicked);
    });
}

QWidget* RestoreSheet::driftedRow(const DriftedEntry& drifted, bool isToBeTicked) {
    const QString title = qt(entryTitle(drifted.entry, model().catalog()));
    auto* words = new Paragraph(qt(drifted.words), Paragraph::Look::secondary);
    QWidget* keys = forExperts(title, drifted.lines);
    if (!isToBeTicked) return sheetRow({new Paragraph(title, Paragraph::Look::heading), words, keys});
    auto* tick = new TickBox(title, Paragraph::Look::heading);
    tick->setAccessibleName(tr("Restore %1 anyway").arg(title));
    tick->setAccessibleDescription(qt(drifted.words));
    ticks_.emplace_back(drifted.entry.id, tick);
    connect(tick, &QCheckBox::toggled, this, [this] { showCount(); });
    auto* below = new QWidget;  // where the title begins
    auto* column = new QVBoxLayout(below);
    column->setContentsMargins(TickBox::indent, 0, 0, 0);
    column->setSpacing(3);
    column->addWidget(words);
    column->addWidget(keys);
    return sheetRow({tick, below});
}

// Of one alone that drifted, and of an action to undo, the button is the answer; else it says how many it
// restores.
void RestoreSheet::addConfirmation(const DriftRequest& changes, Confirm confirm) {
    if (changes.isAboutOne()) {
        addAnswers(changes.undoing ? tr("Undo") : tr("Restore"),
                   [this, confirm, only = changes.entries.front().entry.id] {
                       std::invoke(confirm, model(), std::set<Uuid>{only});
                   });
        return;
    }
    others_ = changes.others.size();
    QPushButton* button = addAnswers(changes.undoing ? tr("Undo") : tr("Restore"),
                                     [this, confirm] { std::invoke(confirm, model(), ticked()); });
    const bool isPlain = changes.undoing || (changes.entries.empty() && others_ == 1);
    if (isPlain) return;
    if (button->isEnabled()) restore_ = button;
    setActionText(button, tr("Restore %1").arg(others_ + changes.entries.size()));
    button->setText(tr("Restore %1").arg(others_));
    showCount();
}

// Where it restores none there is nothing to do until something is ticked.
void RestoreSheet::showCount() {
    if (!restore_) return;
    const std::size_t count = others_ + ticked().size();
    restore_->setText(tr("Restore %1").arg(count));
    restore_->setEnabled(count > 0);
}

std::set<Uuid> RestoreSheet::ticked() const {
    std::set<Uuid> ids;
    for (const auto& [id, tick] : ticks_)
        if (tick->isChecked()) ids.insert(id);
    return ids;
}

}  // namespace

Sheet* sheetFor(AppModel& model, QWidget* window, const RestoreRequest& request) {
    return new RestoreSheet(model, window, request);
}

Sheet* sheetFor(AppModel& model, QWidget* window, const DriftRequest& request) {
    return new RestoreSheet(model, window, request);
}

}  // namespace brell
