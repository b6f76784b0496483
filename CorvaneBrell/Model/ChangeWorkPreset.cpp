// A preset applied, and what it came to in sentences.

#include <fmt/format.h>

#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Dependencies.h"
#include "CorvaneBrell/Model/ChangeWork.h"

namespace brell {

namespace {

std::string leftOut(const std::vector<std::string>& names, std::string_view reason) {
    return "Left out, because " + std::string(reason) + ": " + firstNames(names) + ".";
}

std::string named(const std::string& title, const std::string& reason) {
    return reason.starts_with(title) ? reason : title + ": " + reason;
}

std::string countWords(std::size_t made, std::size_t wanted, std::size_t refused) {
    const std::string words = fmt::format("{} of {} changes were made", made, wanted);
    if (refused == 0) return words + ".";
    return fmt::format("{}; {} {} refused.", words, refused, refused == 1 ? "was" : "were");
}

}  // namespace

ChangeOutcome ChangeWork::applyPreset(const PresetPlan& plan) {
    ChangeOutcome outcome;
    const std::vector<std::string> ids = plan.toApply();
    std::vector<std::string> refused;
    for (const PresetStep& step : plan.steps)
        if (const auto* why = std::get_if<WouldBeRefused>(&step.outcome))
            refused.push_back(named(step.title, why->reason));
    const std::size_t wanted = ids.size() + refused.size();
    for (const std::string& id : ids) {
        if (progress_.isEnding()) break;
        progress_.tell(outcome.made.size(), ids.size());
        const Tweak& tweak = *deps_.catalog.tweak(id);
        noteKeys(outcome, id);
        try {
            outcome.made.push_back(deps_.engine.apply(tweak));
        } catch (const EngineError& error) {
            refused.push_back(named(tweak.title, error.what()));
        }
    }
    outcome.report = {countWords(outcome.made.size(), wanted, refused.size())};
    outcome.report.insert(outcome.report.end(), refused.begin(), refused.end());
    addLeftOut(outcome, plan);
    outcome.undo.done = actionOf(outcome, plan.preset.name);
    return finished(std::move(outcome));
}

// Where everything went as it was shown before, how many were made says enough.
void ChangeWork::addLeftOut(ChangeOutcome& outcome, const PresetPlan& plan) const {
    if (!plan.unknown.empty())
        outcome.report.push_back(leftOut(plan.unknown, "this version of Brell does not know them"));
    if (!plan.experimental.empty())
        outcome.report.push_back(leftOut(deps_.catalog.titlesOf(plan.experimental),
                                         "experimental tweaks are never applied by a preset"));
    if (outcome.report.size() == 1 || outcome.made.empty()) return;
    std::vector<std::string> made;
    for (const JournalEntry& entry : outcome.made) made.push_back(entry.tweakID);
    outcome.report.push_back("Changed: " + join(deps_.catalog.titlesOf(made), ", ") + ".");
}

}  // namespace brell
