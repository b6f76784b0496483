// What a preset would come to, and what it came to.

#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Window/Paragraph.h"
#include "CorvaneBrell/Window/PresetMenu.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Row.h"
#include "CorvaneBrell/Window/SelectableText.h"
#include "CorvaneBrell/Window/Sheets/RequestSheet.h"
#include "CorvaneBrell/Window/Sheets/Sheets.h"

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
        Outcome outcome{"sparkles", Tone::accent, QObject::tr("Would change %1").arg(qt(change.words)), {}};
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
    if (!outcome.keys.empty()) parts.push_back(forExperts(qt(step.title), outcome.keys));
    return sheetRow(parts);
}

QString explanation(const PresetPlan& plan) {
    const QString counts =
        QObject::tr("%1 of %2 settings would change.").arg(plan.toApply().size()).arg(plan.steps.size());
    return plan.preset.summary.empty() ? counts : qt(plan.preset.summary) + ' ' + counts;
}

}  // namespace

Sheet* sheetFor(AppModel& model, QWidget* window, const PresetRequest& request) {
    const PresetPlan& plan = request.plan;
    auto* sheet = new RequestSheet(model, window, QObject::tr("Apply “%1”?").arg(qt(plan.preset.name)),
                                   explanation(plan), &AppModel::cancelPreset);
    if (!plan.experimental.empty())
        sheet->addNote("minus.circle", Tone::caution,
                       QObject::tr("Left out, because experimental tweaks are never applied by a preset: %1.")
                           .arg(qt(firstNames(model.catalog().titlesOf(plan.experimental)))));
    if (!plan.unknown.empty())
        sheet->addNote("questionmark.circle", Tone::caution,
                       QObject::tr("Left out, because this version of Brell does not know them: %1.")
                           .arg(qt(firstNames(plan.unknown))));
    sheet->addCard(plan.steps.size(),
                   [steps = plan.steps](std::size_t place) { return stepRow(steps[place]); });
    QObject::connect(sheet->addAside(QObject::tr("Export...")), &QPushButton::clicked, sheet,
                     [&model, sheet, preset = plan.preset] { exportPreset(model, sheet, preset); });
    QPushButton* apply = sheet->addAnswers(QObject::tr("Apply"), &AppModel::confirmPreset);
    if (plan.toApply().empty()) {
        apply->setEnabled(false);
        sheet->addFootnote(QObject::tr("There is nothing to apply."));
    }
    return sheet;
}

// There is nothing to answer: every way out of it only closes it.
Sheet* sheetFor(AppModel&, QWidget* window, const PresetReport& report) {
    auto* sheet = new Sheet(QObject::tr("What the preset came to"),
                            QObject::tr("Every change is in the journal and can be undone."), window);
    auto* text = new SelectableText(QObject::tr("Result"));
    text->setPlainText(qt(report.lines).join("\n\n"));
    sheet->content()->addWidget(text);
    sheet->addCancel(QObject::tr("Done"));
    return sheet;
}

}  // namespace brell
