// What an earlier run left unfinished, and a journal that was damaged.

#include "CorvaneBrell/Model/EntryWords.h"
#include "CorvaneBrell/Window/Paragraph.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Row.h"
#include "CorvaneBrell/Window/Sheets/RequestSheet.h"
#include "CorvaneBrell/Window/Sheets/Sheets.h"

namespace brell {

namespace {

// Commands are in plain sight, keys where they are asked for.
QWidget* entryRow(const JournalEntry& entry, const RecoveryCommands& commands, const ChangeTitles& titles) {
    const QString title = qt(titles.of(entry));
    std::vector<QWidget*> parts{new Paragraph(title, Paragraph::Look::heading)};
    if (entry.agent)
        parts.push_back(
            new Paragraph(QObject::tr("A login item. Restoring it runs:"), Paragraph::Look::secondary));
    else
        parts.push_back(new Paragraph(qt(changeWords(entry, titles.catalog())), Paragraph::Look::secondary));
    if (const auto failure = failureWords(entry))
        parts.push_back(symbolLine("exclamationmark.triangle", Tone::caution, qt(*failure), nullptr));
    parts.push_back(entry.agent
                        ? keyLines(QObject::tr("What is done to %1").arg(title), commands.at(entry.id))
                        : forExperts(title, putBackLines(entry)));
    return sheetRow(parts);
}

}  // namespace

Sheet* sheetFor(AppModel& model, QWidget* window, const RecoveryRequest& request) {
    auto* sheet = new RequestSheet(
        model, window, QObject::tr("Brell was interrupted while changing a setting"),
        QObject::tr("The original values were saved before the change started. Restoring puts them back."),
        &AppModel::deferRecovery);
    sheet->addCard(request.failures.size(), [failures = request.failures](std::size_t place) {
        return sheetRow(
            {symbolLine("exclamationmark.triangle", Tone::critical, qt(failures[place]), nullptr)});
    });
    sheet->addCard(request.entries.size(), [&model, request](std::size_t place) {
        return entryRow(request.entries[place], request.commands, model.titles());
    });
    sheet->addFootnote(
        QObject::tr("The entries stay in the journal and Brell asks again at the next launch."));
    sheet->addAnswers(QObject::tr("Restore"), &AppModel::recover, QObject::tr("Later"));
    return sheet;
}

// The journal's error does not lock this one: it is the way out of it.
Sheet* sheetFor(AppModel& model, QWidget* window, const RebuildRequest& request) {
    auto* sheet = new RequestSheet(
        model, window, QObject::tr("Rebuild the journal from its history?"),
        QObject::tr(
            "Every line of the history holds a whole change. The last line of each becomes the new "
            "journal. No setting is changed, and the journal as it is now is kept beside the new one."),
        &AppModel::cancelRebuild);
    for (const std::string& fact : request.facts) sheet->addNote("info.circle", Tone::plain, qt(fact));
    sheet->addCard(request.active.size(), [active = request.active](std::size_t place) {
        return sheetRow({new Paragraph(qt(active[place].title), Paragraph::Look::heading),
                         new Paragraph(qt(active[place].state), Paragraph::Look::secondary)});
    });
    sheet->addCancel();
    QObject::connect(sheet->addButton(QObject::tr("Rebuild")), &QPushButton::clicked, sheet,
                     [&model] { model.confirmRebuild(); });
    return sheet;
}

Sheet* sheetFor(AppModel& model, QWidget* window, const RebuildReport& report) {
    auto* sheet = new RequestSheet(model, window, QObject::tr("The journal is rebuilt"),
                                   QObject::tr("Every change that the history told of can be undone again."),
                                   &AppModel::cancelRebuild);
    for (const std::string& line : report.lines) sheet->addNote("info.circle", Tone::plain, qt(line));
    const bool goesOn = report.use == RebuiltFor::thisRun;
    sheet->addCancel(goesOn ? QObject::tr("Done") : QObject::tr("Later"));
    if (goesOn) return sheet;
    QObject::connect(sheet->addButton(QObject::tr("Quit Brell")), &QPushButton::clicked, sheet,
                     [&model, window] {
                         model.cancelRebuild();
                         window->close();
                     });
    return sheet;
}

}  // namespace brell
