// What an earlier run left unfinished, and a journal that was damaged.

#include <algorithm>
#include <map>

#include "CorvaneBrell/Model/EntryWords.h"
#include "CorvaneBrell/Model/NoticeText.h"
#include "CorvaneBrell/Window/Paragraph.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Row.h"
#include "CorvaneBrell/Window/Sheets/RequestSheet.h"
#include "CorvaneBrell/Window/Sheets/Sheets.h"

namespace brell {

namespace {

// Says of an agent whether its commands are run as soon as launchd has said so, which is waited for by
// nothing: the sheet stays open as it is, with its buttons in their places.
class RecoverySheet final : public RequestSheet {
public:
    RecoverySheet(AppModel& model, QWidget* window, const RecoveryRequest& request);
    void refresh() override;

private:
    QWidget* entryRow(const JournalEntry& entry);
    std::optional<std::string> refusalOfAgent(const Uuid& id);
    RecoveryCommands shown();

    const RecoveryCommands commands_;
    std::map<Uuid, Paragraph*> agents_;  // the words above the commands, of the rows that are shown
};

RecoverySheet::RecoverySheet(AppModel& model, QWidget* window, const RecoveryRequest& request)
    : RequestSheet(model, window, tr("Brell was interrupted while changing a setting"),
                   tr("The original values were saved before the change started. Restoring puts them back."),
                   &AppModel::deferRecovery),
      commands_(request.commands) {
    addCard(request.failures.size(), [failures = request.failures](std::size_t place) {
        return sheetRow(
            {symbolLine("exclamationmark.triangle", Tone::critical, qt(failures[place]), nullptr)});
    });
    // The agents last, as they are put back: what is said of them later moves nothing that is clicked.
    std::vector<JournalEntry> entries = request.entries;
    std::stable_partition(entries.begin(), entries.end(),
                          [](const JournalEntry& entry) { return !entry.agent; });
    addCard(entries.size(), [this, entries](std::size_t place) { return entryRow(entries[place]); });
    addFootnote(tr("The entries stay in the journal and Brell asks again at the next launch."));
    addAnswers(
        tr("Restore"), [this] { this->model().recover(shown()); }, tr("Later"));
}

// Commands are in plain sight, keys where they are asked for.
QWidget* RecoverySheet::entryRow(const JournalEntry& entry) {
    const ChangeTitles& titles = model().titles();
    const QString title = qt(titles.of(entry));
    auto* words = new Paragraph({}, Paragraph::Look::secondary);
    std::vector<QWidget*> parts{new Paragraph(title, Paragraph::Look::heading), words};
    if (const auto failure = failureWords(entry))
        parts.push_back(symbolLine("exclamationmark.triangle", Tone::caution, qt(*failure), nullptr));
    if (entry.agent) {
        agents_.emplace(entry.id, words);
        refresh();
        parts.push_back(keyLines(tr("What is done to %1").arg(title), commands_.at(entry.id).commands));
    } else {
        words->setText(qt(changeWords(entry, titles.catalog())));
        parts.push_back(forExperts(title, putBackLines(entry)));
    }
    return sheetRow(parts);
}

void RecoverySheet::refresh() {
    for (const auto& [id, words] : agents_) {
        const auto refusal = refusalOfAgent(id);
        words->setText(refusal ? tr("A login item that can't be put back, so none of these commands is run: "
                                    "%1 It can be closed on the Journal page, with Keep Unchanged.")
                                     .arg(qt(*refusal))
                               : tr("A login item. Restoring it runs:"));
    }
}

std::optional<std::string> RecoverySheet::refusalOfAgent(const Uuid& id) {
    const auto& known = commands_.at(id).refusal;
    return known ? known : refusalOf(id, model().state());
}

RecoveryCommands RecoverySheet::shown() {
    RecoveryCommands shown = commands_;
    for (auto& [id, puttingBack] : shown) puttingBack.refusal = refusalOfAgent(id);
    return shown;
}

}  // namespace

Sheet* sheetFor(AppModel& model, QWidget* window, const RecoveryRequest& request) {
    return new RecoverySheet(model, window, request);
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
