#include "CorvaneBrell/Window/Sheets/DriftSheet.h"

#include "CorvaneBrell/Model/EntryWords.h"
#include "CorvaneBrell/Window/QtText.h"

namespace brell {

namespace {

// What restoring does beside the ticked ones; without anything else it does nothing until one is ticked.
QString whatElse(const DriftRequest& request) {
    const auto others = static_cast<int>(request.others.size());
    if (others == 1) return QObject::tr("1 other change is restored, too.");
    if (others > 1) return QObject::tr("%1 other changes are restored, too.").arg(others);
    return QObject::tr("Nothing is restored until something is ticked.");
}

}  // namespace

DriftSheet::DriftSheet(AppModel& model, QWidget* window, const DriftRequest& request)
    : RequestSheet(model, window, qt(request.title()), qt(request.explanation()), &AppModel::cancelDrift),
      others_(request.others.size()) {
    const bool isAlone = request.entries.size() == 1 && request.others.empty();
    addCard(request.entries.size(), [this, isAlone, entries = request.entries](std::size_t place) {
        return entryRow(entries[place], !isAlone);
    });
    if (!isAlone) addFootnote(whatElse(request));
    if (const auto& pending = request.pendingAfterDrift)
        addNote("info.circle", Tone::plain,
                tr("When it is restored, Brell changes %1 as you asked.").arg(qt(pending->tweak.title)));
    // Of one alone the button is the answer; of several each is ticked.
    if (isAlone) {
        addAnswers(tr("Restore"),
                   [this, only = request.entries.front().entry.id] { this->model().confirmDrift({only}); });
        return;
    }
    QPushButton* restore = addAnswers({}, [this] { this->model().confirmDrift(ticked()); });
    if (restore->isEnabled()) restore_ = restore;
    restore->setText(tr("Restore %1").arg(others_));
    showCount();
}

// The button says how many it restores; where that is none there is nothing to do until something is ticked.
void DriftSheet::showCount() {
    if (!restore_) return;
    const std::size_t count = others_ + ticked().size();
    restore_->setText(tr("Restore %1").arg(count));
    restore_->setEnabled(count > 0);
}

QWidget* DriftSheet::entryRow(const DriftedEntry& drifted, bool isToBeTicked) {
    const QString title = qt(entryTitle(drifted.entry, model().catalog()));
    QWidget* keys = keyLines(tr("Keys of %1").arg(title), drifted.lines);
    if (!isToBeTicked) return sheetRow({new Paragraph(title, Paragraph::Look::heading), keys});
    auto* tick = new TickBox(title, Paragraph::Look::heading);
    tick->setAccessibleName(tr("Restore %1 anyway").arg(title));
    ticks_.emplace_back(drifted.entry.id, tick);
    connect(tick, &QCheckBox::toggled, this, &DriftSheet::showCount);
    return sheetRow({tick, keys});
}

std::set<Uuid> DriftSheet::ticked() const {
    std::set<Uuid> ids;
    for (const auto& [id, tick] : ticks_)
        if (tick->isChecked()) ids.insert(id);
    return ids;
}

}  // namespace brell
