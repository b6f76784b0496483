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
    return request.entries.size() == 1 ? QObject::tr("Tick the setting to restore it anyway.")
                                       : QObject::tr("Nothing is restored until something is ticked.");
}

}  // namespace

DriftSheet::DriftSheet(AppModel& model, QWidget* window, const DriftRequest& request)
    : RequestSheet(model, window, qt(request.title()), qt(request.explanation()), &AppModel::cancelDrift) {
    addCard(request.entries.size(),
            [this, entries = request.entries](std::size_t place) { return entryRow(entries[place]); });
    addFootnote(whatElse(request));
    if (const auto& pending = request.pendingAfterDrift)
        addNote("info.circle", Tone::plain,
                tr("When it is restored, Brell changes %1 as you asked.").arg(qt(pending->tweak.title)));

    const bool single = request.entries.size() == 1 && request.others.empty();
    QPushButton* restore = addAnswers(single ? tr("Restore") : tr("Restore Ticked"),
                                      [this] { this->model().confirmDrift(ticked()); });
    if (!request.others.empty() || !restore->isEnabled()) return;
    restore_ = restore;
    enableRestore();
}

// Where nothing else is restored there is nothing to do until something is ticked.
void DriftSheet::enableRestore() {
    if (restore_) restore_->setEnabled(!ticked().empty());
}

QWidget* DriftSheet::entryRow(const DriftedEntry& drifted) {
    const QString title = qt(entryTitle(drifted.entry, model().catalog()));
    auto* tick = new TickBox(title, Paragraph::Look::heading);
    tick->setAccessibleName(tr("Restore %1 anyway").arg(title));
    ticks_.emplace_back(drifted.entry.id, tick);
    connect(tick, &QCheckBox::toggled, this, &DriftSheet::enableRestore);
    return sheetRow({tick, keyLines(tr("Keys of %1").arg(title), drifted.lines)});
}

std::set<Uuid> DriftSheet::ticked() const {
    std::set<Uuid> ids;
    for (const auto& [id, tick] : ticks_)
        if (tick->isChecked()) ids.insert(id);
    return ids;
}

}  // namespace brell
