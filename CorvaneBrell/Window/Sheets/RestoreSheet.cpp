#include "CorvaneBrell/Window/Sheets/RestoreSheet.h"

#include "CorvaneBrell/Window/Disclosure.h"
#include "CorvaneBrell/Window/Paragraph.h"
#include "CorvaneBrell/Window/QtText.h"

namespace brell {

namespace {

QString explanation(const RestoreRequest& request) {
    if (request.undoing)
        return QObject::tr(
            "This undoes the last change of this session. These are the keys it changes and the "
            "commands it runs.");
    if (request.entries.size() == 1)
        return QObject::tr("This puts back what was there before Brell changed it.");
    return QObject::tr("This undoes %1 changes, the latest first, and puts back what was there before.")
        .arg(request.entries.size());
}

// Commands are in plain sight, keys where they are asked for.
QWidget* stepRow(const RestoreStep& step) {
    const QString title = qt(step.title);
    const auto lines = [title, step] {
        return keyLines(QObject::tr("What is done to %1").arg(title), step.lines);
    };
    return sheetRow({new Paragraph(title, Paragraph::Look::heading),
                     new Paragraph(qt(step.words), Paragraph::Look::secondary),
                     step.runsCommands ? lines() : new Disclosure(QObject::tr("For experts"), title, lines)});
}

}  // namespace

RestoreSheet::RestoreSheet(AppModel& model, QWidget* window, const RestoreRequest& request)
    : RequestSheet(model, window, qt(request.title), explanation(request), &AppModel::cancelRestore) {
    addCard(request.steps.size(),
            [steps = request.steps](std::size_t place) { return stepRow(steps[place]); });
    const QString restore =
        request.entries.size() == 1 ? tr("Restore") : tr("Restore %1").arg(request.entries.size());
    addAnswers(request.undoing ? tr("Undo") : restore, [this] { this->model().confirmRestore(); });
}

}  // namespace brell
