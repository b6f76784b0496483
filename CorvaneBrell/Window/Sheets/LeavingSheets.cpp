// The way out of Brell: what is still changed, the proof that nothing is, what to keep, and then Brell's own
// files to the Trash. Each step can be the last.

#include <algorithm>

#include "CorvaneBrell/Model/NoticeText.h"
#include "CorvaneBrell/Window/Disclosure.h"
#include "CorvaneBrell/Window/FileActions.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/Paragraph.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Row.h"
#include "CorvaneBrell/Window/Sheets/RequestSheet.h"
#include "CorvaneBrell/Window/Sheets/Sheets.h"
#include "CorvaneBrell/Window/Trash.h"

namespace brell {

namespace {

QString explanation(const LeavingRequest& request) {
    if (!request.active.empty())
        return QObject::tr(
            "First everything that Brell changed and that is still changed is put back. Each "
            "step can be the last: what was done so far stays done.");
    return QObject::tr(
        "No change of Brell is active any more. You can stop here, or let Brell's own files go, "
        "too.");
}

QWidget* filesToKeep(RequestSheet& sheet) {
    auto* row = new QWidget;
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(8);
    const auto add = [&](const QString& text, void (*act)(AppModel&, QWidget*)) {
        auto* button = actionButton(text, "doc.text");
        QObject::connect(button, &QPushButton::clicked, &sheet,
                         [&sheet, act] { act(sheet.model(), &sheet); });
        line->addWidget(button);
    };
    add(QObject::tr("Save Report..."), FileActions::saveReport);
    add(QObject::tr("Save Restore Script..."), FileActions::saveRestoreScript);
    line->addStretch(1);
    return row;
}

void showActive(RequestSheet& sheet, const LeavingRequest& request) {
    sheet.content()->addWidget(filesToKeep(sheet));
    const AppState& state = sheet.model().state();
    sheet.addCard(request.active.size(), [active = request.active, &state](std::size_t place) {
        std::vector<QWidget*> parts{new Paragraph(qt(active[place].title), Paragraph::Look::heading),
                                    new Paragraph(qt(active[place].words), Paragraph::Look::secondary)};
        // Of an agent without its capture its words say so.
        const auto refusal = refusalOf(active[place].id, state);
        if (refusal && !refusal->starts_with(active[place].words))
            parts.push_back(symbolLine("exclamationmark.triangle", Tone::caution, qt(*refusal), nullptr));
        return sheetRow(parts);
    });
    sheet.addFootnote(QObject::tr("As long as a change is active, nothing of Brell's is removed."));
    const bool isAnyRefused = std::any_of(request.active.begin(), request.active.end(), [&](const auto& one) {
        return refusalOf(one.id, state).has_value();
    });
    if (isAnyRefused)
        sheet.addFootnote(QObject::tr(
            "A change that can't be put back can be closed on the Journal page, with Keep Unchanged."));
    sheet.addAnswers(QObject::tr("Restore %1...").arg(request.active.size()), &AppModel::askRestoreAll);
}

// By what was put back on the way here.
void showProof(RequestSheet& sheet, const LeavingRequest& request) {
    if (request.proof)
        sheet.addNote(request.isProved() ? "checkmark.circle" : "exclamationmark.triangle",
                      request.isProved() ? Tone::positive : Tone::caution, qt(request.proof->words));
    if (!request.keys.empty())
        sheet.content()->addWidget(
            new Disclosure(QObject::tr("For experts"), QObject::tr("Key by key"),
                           [keys = request.keys] { return keyLines(QObject::tr("Key by key"), keys); }));
    const std::string waiting = relaunchText(sheet.model().state(), sheet.model().catalog());
    if (!waiting.empty() && request.active.empty())
        sheet.addNote("arrow.clockwise", Tone::plain,
                      QObject::tr("%1. What was put back shows there after it, or after the next login.")
                          .arg(qt(waiting)));
}

void showWhatGoes(RequestSheet& sheet, const LeavingRequest& request) {
    sheet.content()->addWidget(filesToKeep(sheet));
    sheet.addCard(1, [folder = qt(request.folder)](std::size_t) {
        return sheetRow(
            {new Paragraph(QObject::tr("What goes"), Paragraph::Look::heading),
             new Paragraph(QObject::tr("To the Trash: %1, with the journal, its history and the restore "
                                       "script.")
                               .arg(folder),
                           Paragraph::Look::secondary),
             new Paragraph(
                 QObject::tr("Removed: Brell's own preferences, such as the window's size and which "
                             "privacy cards you reviewed. The application itself stays."),
                 Paragraph::Look::secondary)});
    });
    if (const auto& why = request.whyNotToTrash)
        sheet.addFootnote(QObject::tr("Brell's folder stays in its place: %1.").arg(qt(*why)), "lock",
                          Tone::critical);
    QPushButton* go = sheet.addAnswers(
        QObject::tr("Move to the Trash"), [&sheet] { sheet.model().confirmLeaving(moveToTrash); },
        QObject::tr("Done"));
    if (!request.mayGoToTrash()) go->setEnabled(false);
}

}  // namespace

Sheet* sheetFor(AppModel& model, QWidget* window, const LeavingRequest& request) {
    auto* sheet = new RequestSheet(model, window, QObject::tr("Leaving Brell"), explanation(request),
                                   &AppModel::cancelLeaving);
    showProof(*sheet, request);
    if (request.active.empty())
        showWhatGoes(*sheet, request);
    else
        showActive(*sheet, request);
    return sheet;
}

// Every way out of it closes the window: a Brell that has left changes nothing any more.
Sheet* sheetFor(AppModel&, QWidget* window, const LeavingReport& report) {
    auto* sheet = new Sheet(QObject::tr("Brell has left"),
                            QObject::tr("No change of Brell is active any more."), window);
    for (const std::string& line : report.lines)
        sheet->content()->addWidget(symbolLine("info.circle", Tone::plain, qt(line), sheet));
    sheet->addCancel(QObject::tr("Quit Brell"));
    QObject::connect(sheet, &QDialog::rejected, window, &QWidget::close);
    return sheet;
}

}  // namespace brell
