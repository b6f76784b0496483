#include "CorvaneBrell/Window/Sheets/AgentConfirmSheet.h"

#include "BrellCore/Background/AgentExplainer.h"
#include "CorvaneBrell/Window/FactList.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Row.h"

namespace brell {

AgentConfirmSheet::AgentConfirmSheet(AppModel& model, QWidget* window, const AgentConfirmRequest& request)
    : RequestSheet(model, window, qt(request.title), qt(request.explanation()), &AppModel::cancelAgents) {
    addCard(request.agents.size(), [agents = request.agents](std::size_t place) {
        const LaunchAgentPlist& job = agents[place].plist;
        const AgentExplanation about =
            AgentExplainer::explain(job.label.value_or(""), std::nullopt, job.executable());
        auto* facts = new FactList;
        facts->add(tr("App"), qt(about.app));
        facts->add(tr("What stops"), qt(about.stops));
        facts->add(tr("Risk"), qt(label(about.risk)));
        return sheetRow({facts});
    });
    addLines(tr("Commands"), qt(request.commands));
    addCard(request.refusals.size(), [refusals = request.refusals](std::size_t place) {
        return sheetRow({symbolLine("minus.circle", Tone::caution,
                                    tr("Left out: %1").arg(qt(refusals[place])), nullptr)});
    });
    addFootnote(tr("The journal keeps how it was, so that it can be put back."));
    addAnswers(request.turningOn ? tr("Turn On") : tr("Turn Off"), [this] { this->model().confirmAgents(); });
}

}  // namespace brell
