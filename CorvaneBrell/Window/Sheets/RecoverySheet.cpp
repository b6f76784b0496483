#include "CorvaneBrell/Window/Sheets/RecoverySheet.h"

#include "CorvaneBrell/Model/EntryWords.h"
#include "CorvaneBrell/Window/Paragraph.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Row.h"

namespace brell {

namespace {

QWidget* entryRow(const JournalEntry& entry, const TweakCatalog& catalog) {
    const QString title = qt(entryTitle(entry, catalog));
    std::vector<QWidget*> parts{new Paragraph(title, Paragraph::Look::heading)};
    if (entry.agent)
        parts.push_back(new Paragraph(QObject::tr("A login item: it is switched back to how it was."),
                                      Paragraph::Look::secondary));
    else
        parts.push_back(new Paragraph(qt(changeWords(entry, catalog)), Paragraph::Look::secondary));
    if (const auto failure = failureWords(entry))
        parts.push_back(symbolLine("exclamationmark.triangle", Tone::caution, qt(*failure), nullptr));
    if (!entry.agent) parts.push_back(forExperts(title, putBackLines(entry)));
    return sheetRow(parts);
}

}  // namespace

RecoverySheet::RecoverySheet(AppModel& model, QWidget* window, const RecoveryRequest& request)
    : RequestSheet(model, window, tr("Brell was interrupted while changing a setting"),
                   tr("The original values were saved before the change started. Restoring puts them back."),
                   &AppModel::deferRecovery) {
    addCard(request.failures.size(), [failures = request.failures](std::size_t place) {
        return sheetRow(
            {symbolLine("exclamationmark.triangle", Tone::critical, qt(failures[place]), nullptr)});
    });
    addCard(request.entries.size(), [&model, entries = request.entries](std::size_t place) {
        return entryRow(entries[place], model.catalog());
    });
    addFootnote(tr("The entries stay in the journal and Brell asks again at the next launch."));
    addAnswers(
        tr("Restore"), [this] { this->model().recover(); }, tr("Later"));
}

}  // namespace brell
