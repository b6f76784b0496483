#include "CorvaneBrell/Window/Sheets/PresetSheet.h"

#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Window/Paragraph.h"
#include "CorvaneBrell/Window/PresetMenu.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Row.h"

namespace brell {

namespace {

// The fate of one tweak: in words with their symbol, then the keys or the reason.
struct Outcome {
    QString symbol;
    Tone tone;
    QString text;
    std::vector<std::string> keys;
};

struct OutcomeOf {
    Outcome operator()(const AlreadySo&) const {
        return {"checkmark.circle", Tone::positive, QObject::tr("Already so"), {}};
    }
    Outcome operator()(const WouldChange& change) const {
        Outcome outcome{"chevron.right", Tone::accent, QObject::tr("Would change"), {}};
        for (const KeyChange& key : change.keys) outcome.keys.push_back(key.rendered());
        return outcome;
    }
    Outcome operator()(const WouldBeRefused& refused) const {
        return {
            "minus.circle", Tone::caution, QObject::tr("Would be refused: %1").arg(qt(refused.reason)), {}};
    }
};

QWidget* stepRow(const PresetStep& step) {
    const Outcome outcome = std::visit(OutcomeOf{}, step.outcome);
    std::vector<QWidget*> parts{new Paragraph(qt(step.title), Paragraph::Look::heading),
                                symbolLine(outcome.symbol, outcome.tone, outcome.text, nullptr)};
    if (!outcome.keys.empty())
        parts.push_back(keyLines(QObject::tr("Keys of %1").arg(qt(step.title)), outcome.keys));
    return sheetRow(parts);
}

QString explanation(const PresetPlan& plan) {
    const QString counts =
        QObject::tr("%1 of %2 settings would change.").arg(plan.toApply().size()).arg(plan.steps.size());
    return plan.preset.summary.empty() ? counts : qt(plan.preset.summary) + ' ' + counts;
}

}  // namespace

PresetSheet::PresetSheet(AppModel& model, QWidget* window, const PresetRequest& request)
    : RequestSheet(model, window, tr("Apply %1?").arg(qt(request.plan.preset.name)),
                   explanation(request.plan), &AppModel::cancelPreset) {
    const PresetPlan& plan = request.plan;
    addCard(plan.steps.size(), [steps = plan.steps](std::size_t place) { return stepRow(steps[place]); });
    if (!plan.experimental.empty())
        addNote("minus.circle", Tone::caution,
                tr("Left out, because experimental tweaks are never applied by a preset: %1.")
                    .arg(qt(firstNames(model.catalog().titlesOf(plan.experimental)))));
    if (!plan.unknown.empty())
        addNote("questionmark.circle", Tone::caution,
                tr("Left out, because this version of Brell does not know them: %1.")
                    .arg(qt(firstNames(plan.unknown))));
    connect(addButton(tr("Export...")), &QPushButton::clicked, this,
            [this, preset = plan.preset] { exportPreset(this->model(), this, preset); });
    QPushButton* apply = addAnswers(tr("Apply"), [this] { this->model().confirmPreset(); });
    if (plan.toApply().empty()) {
        apply->setEnabled(false);
        addFootnote(tr("There is nothing to apply."));
    }
}

}  // namespace brell
