#include "CorvaneBrell/Window/Sheets/LeavingSheet.h"

#include "CorvaneBrell/Model/NoticeText.h"
#include "CorvaneBrell/Window/Disclosure.h"
#include "CorvaneBrell/Window/FileActions.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/Paragraph.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Row.h"
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

}  // namespace

LeavingSheet::LeavingSheet(AppModel& model, QWidget* window, const LeavingRequest& request)
    : RequestSheet(model, window, tr("Leaving Brell"), explanation(request), &AppModel::cancelLeaving) {
    showProof(request);
    if (request.active.empty())
        showWhatGoes(request);
    else
        showActive(request);
}

void LeavingSheet::showActive(const LeavingRequest& request) {
    content()->addWidget(filesToKeep());
    addCard(request.active.size(), [active = request.active](std::size_t place) {
        return sheetRow({new Paragraph(qt(active[place].title), Paragraph::Look::heading),
                         new Paragraph(qt(active[place].words), Paragraph::Look::secondary)});
    });
    addFootnote(tr("As long as a change is active, nothing of Brell's is removed."));
    addAnswers(tr("Restore %1...").arg(request.active.size()), [this] { this->model().askRestoreAll(); });
}

// By what was put back on the way here.
void LeavingSheet::showProof(const LeavingRequest& request) {
    if (request.proof)
        addNote(request.isProved() ? "checkmark.circle" : "exclamationmark.triangle",
                request.isProved() ? Tone::positive : Tone::caution, qt(request.proof->words));
    if (!request.keys.empty())
        content()->addWidget(new Disclosure(tr("For experts"), tr("Key by key"), [keys = request.keys] {
            return keyLines(QObject::tr("Key by key"), keys);
        }));
    const std::string waiting = relaunchText(model().state(), model().catalog());
    if (!waiting.empty() && request.active.empty())
        addNote("arrow.clockwise", Tone::plain,
                tr("%1. What was put back shows there after it, or after the next login.").arg(qt(waiting)));
}

void LeavingSheet::showWhatGoes(const LeavingRequest& request) {
    content()->addWidget(filesToKeep());
    addCard(1, [folder = qt(request.folder)](std::size_t) {
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
        addFootnote(tr("Brell's folder stays in its place: %1.").arg(qt(*why)), "lock", Tone::critical);
    QPushButton* go = addAnswers(
        tr("Move to the Trash"), [this] { this->model().confirmLeaving(moveToTrash); }, tr("Done"));
    if (!request.mayGoToTrash()) go->setEnabled(false);
}

QWidget* LeavingSheet::filesToKeep() {
    auto* row = new QWidget;
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(8);
    const auto add = [&](const QString& text, void (*act)(AppModel&, QWidget*)) {
        auto* button = actionButton(text, "doc.text");
        connect(button, &QPushButton::clicked, this, [this, act] { act(this->model(), this); });
        line->addWidget(button);
    };
    add(tr("Save Report…"), FileActions::saveReport);
    add(tr("Save Restore Script…"), FileActions::saveRestoreScript);
    line->addStretch(1);
    return row;
}

LeavingReportSheet::LeavingReportSheet(QWidget* window, const LeavingReport& report)
    : Sheet(tr("Brell has left"), tr("No change of Brell is active any more."), window) {
    for (const std::string& line : report.lines)
        content()->addWidget(symbolLine("info.circle", Tone::plain, qt(line), this));
    addCancel(tr("Quit Brell"));
    connect(this, &QDialog::rejected, window, &QWidget::close);
}

}  // namespace brell
