#include "CorvaneBrell/Window/Sheets/RebuildSheet.h"

#include "CorvaneBrell/Window/Paragraph.h"
#include "CorvaneBrell/Window/QtText.h"

namespace brell {

RebuildSheet::RebuildSheet(AppModel& model, QWidget* window, const RebuildRequest& request)
    : RequestSheet(model, window, tr("Rebuild the journal from its history?"),
                   tr("Every line of the history holds a whole change. The last line of each becomes the new "
                      "journal. No setting is changed, and the damaged file is kept beside the new one."),
                   &AppModel::cancelRebuild) {
    for (const std::string& fact : request.facts) addNote("info.circle", Tone::plain, qt(fact));
    addCard(request.active.size(), [active = request.active](std::size_t place) {
        return sheetRow({new Paragraph(qt(active[place].title), Paragraph::Look::heading),
                         new Paragraph(qt(active[place].state), Paragraph::Look::secondary)});
    });
    addCancel();
    connect(addButton(tr("Rebuild")), &QPushButton::clicked, this, [&model] { model.confirmRebuild(); });
}

RebuildReportSheet::RebuildReportSheet(AppModel& model, QWidget* window, const RebuildReport& report)
    : RequestSheet(model, window, tr("The journal is rebuilt"),
                   tr("Every change that the history told of can be undone again."),
                   &AppModel::cancelRebuild) {
    for (const std::string& line : report.lines) addNote("info.circle", Tone::plain, qt(line));
    addCancel(tr("Later"));
    connect(addButton(tr("Quit Brell")), &QPushButton::clicked, this, [&model, window] {
        model.cancelRebuild();
        window->close();
    });
}

}  // namespace brell
