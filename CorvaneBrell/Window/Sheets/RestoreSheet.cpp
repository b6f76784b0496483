#include "CorvaneBrell/Window/Sheets/RestoreSheet.h"

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

}  // namespace

RestoreSheet::RestoreSheet(AppModel& model, QWidget* window, const RestoreRequest& request)
    : RequestSheet(model, window, qt(request.title), explanation(request), &AppModel::cancelRestore) {
    addLines(tr("What is put back"), qt(request.lines));
    addAnswers(request.undoing ? tr("Undo") : tr("Restore"), [this] { this->model().confirmRestore(); });
}

}  // namespace brell
