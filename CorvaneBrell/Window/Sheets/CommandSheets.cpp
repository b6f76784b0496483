// What runs commands or quits an app says so first: agents, relaunches, macOS's own list.

#include "BrellCore/Background/AgentExplainer.h"
#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Model/NoticeText.h"
#include "CorvaneBrell/Window/FactList.h"
#include "CorvaneBrell/Window/Paragraph.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Row.h"
#include "CorvaneBrell/Window/Sheets/RequestSheet.h"
#include "CorvaneBrell/Window/Sheets/Sheets.h"

namespace brell {

namespace {

// One alone is named by the sheet's title.
QWidget* agentRow(const AgentConfirmRequest& request, std::size_t place) {
    const LaunchAgentPlist& job = request.agents[place].plist;
    const AgentExplanation about =
        AgentExplainer::explain(job.label.value_or(""), std::nullopt, job.executable());
    std::vector<QWidget*> parts;
    if (request.agents.size() > 1)
        parts.push_back(new Paragraph(qt(excerpt(job.label.value_or(""))), Paragraph::Look::heading));
    auto* facts = new FactList;
    facts->add(QObject::tr("App"), qt(about.app));
    if (request.turningOn)
        facts->add(QObject::tr("What starts"), qt(about.what));
    else
        facts->add(QObject::tr("What stops"), qt(about.stops));
    facts->add(QObject::tr("Risk"), qt(label(about.risk)));
    parts.push_back(facts);
    return sheetRow(parts);
}

QString relaunchTitle(const std::vector<Relauncher::Target>& targets) {
    QStringList names;
    for (const Relauncher::Target target : targets) names.append(qt(Relauncher::facts(target).name));
    return QObject::tr("Relaunch %1?").arg(names.join(QObject::tr(" and ")));
}

}  // namespace

Sheet* sheetFor(AppModel& model, QWidget* window, const AgentConfirmRequest& request) {
    auto* sheet = new RequestSheet(model, window, qt(request.title), qt(request.explanation()),
                                   &AppModel::cancelAgents);
    sheet->addCard(request.agents.size(), [request](std::size_t place) { return agentRow(request, place); });
    sheet->addLines(QObject::tr("Commands"), qt(request.commands));
    sheet->addCard(request.refusals.size(), [refusals = request.refusals](std::size_t place) {
        return sheetRow({symbolLine("minus.circle", Tone::caution,
                                    QObject::tr("Left out: %1").arg(qt(refusals[place])), nullptr)});
    });
    sheet->addFootnote(QObject::tr("The journal keeps how it was, so that it can be put back."));
    sheet->addAnswers(request.turningOn ? QObject::tr("Turn On") : QObject::tr("Turn Off"),
                      &AppModel::confirmAgents);
    return sheet;
}

Sheet* sheetFor(AppModel& model, QWidget* window, const RelaunchRequest& request) {
    auto* sheet = new RequestSheet(
        model, window, relaunchTitle(request.targets),
        QObject::tr("Brell sends the same quit request as ⌘Q and then reopens the app. It never forces a "
                    "quit."),
        &AppModel::cancelRelaunch);
    sheet->addCard(request.targets.size(), [&model, targets = request.targets](std::size_t place) {
        const Relauncher::TargetFacts& app = Relauncher::facts(targets[place]);
        std::vector<QWidget*> parts{
            new Paragraph(QObject::tr("What waits for %1").arg(qt(app.name)), Paragraph::Look::heading)};
        for (const std::string& waiting : waitingTitles(model.state(), model.catalog(), app.effectClass))
            parts.push_back(new Paragraph(qt(waiting)));
        return sheetRow(parts);
    });
    sheet->addAnswers(QObject::tr("Relaunch"), &AppModel::confirmRelaunch);
    return sheet;
}

Sheet* sheetFor(AppModel& model, QWidget* window, const TaskListRequest&) {
    auto* sheet = new RequestSheet(
        model, window, QObject::tr("Read macOS's list of background items?"),
        QObject::tr("macOS keeps a list of what apps registered to start by themselves, and gives it through "
                    "a tool of its own, sfltool. For that tool macOS may ask for an administrator's "
                    "password. Brell never sees the password and changes nothing in the list."),
        &AppModel::cancelTaskList);
    sheet->addNote(
        "info.circle", Tone::plain,
        QObject::tr("You can leave it out: what launchd knows is shown without it. Once macOS has given the "
                    "list, Brell reads it when this page is opened and at Refresh."));
    sheet->addAnswers(QObject::tr("Read the List"), &AppModel::confirmTaskList);
    return sheet;
}

}  // namespace brell
