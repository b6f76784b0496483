#include "CorvaneBrell/Window/Sheets/RelaunchSheet.h"

#include "CorvaneBrell/Model/NoticeText.h"
#include "CorvaneBrell/Window/Paragraph.h"
#include "CorvaneBrell/Window/QtText.h"

namespace brell {

namespace {

QString title(const std::vector<Relauncher::Target>& targets) {
    QStringList names;
    for (const Relauncher::Target target : targets) names.append(qt(Relauncher::facts(target).name));
    return QObject::tr("Relaunch %1?").arg(names.join(QObject::tr(" and ")));
}

}  // namespace

RelaunchSheet::RelaunchSheet(AppModel& model, QWidget* window, const RelaunchRequest& request)
    : RequestSheet(model, window, title(request.targets),
                   tr("Brell sends the same quit request as ⌘Q and then reopens the app. It never forces a "
                      "quit."),
                   &AppModel::cancelRelaunch) {
    addCard(request.targets.size(), [&model, targets = request.targets](std::size_t place) {
        const Relauncher::TargetFacts& app = Relauncher::facts(targets[place]);
        std::vector<QWidget*> parts{
            new Paragraph(tr("What waits for %1").arg(qt(app.name)), Paragraph::Look::heading)};
        for (const std::string& waiting : waitingTitles(model.state(), model.catalog(), app.effectClass))
            parts.push_back(new Paragraph(qt(waiting)));
        return sheetRow(parts);
    });
    addAnswers(tr("Relaunch"), [this] { this->model().confirmRelaunch(); });
}

}  // namespace brell
