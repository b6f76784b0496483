#include "CorvaneBrell/Model/NoticeText.h"

#include <fmt/format.h>

#include "BrellCore/Support/Text.h"

namespace brell {

std::vector<std::string> waitingTitles(const AppState& state, const TweakCatalog& catalog,
                                       EffectClass effect) {
    std::vector<std::string> titles;
    for (const auto& [tweakID, pending] : state.pendingRelaunches)
        if (const Tweak* tweak = catalog.tweak(tweakID); tweak && tweak->effect == effect)
            titles.push_back(tweak->title);
    return titles;
}

std::string interruptedText(const AppState& state) {
    const std::size_t count = state.interrupted.size();
    if (!state.recoveryDeferred || count == 0) return {};
    if (count == 1)
        return "1 change was interrupted. Its original values are in the journal and can be put back.";
    return fmt::format(
        "{} changes were interrupted. Their original values are in the journal and can be put back.", count);
}

std::string relaunchText(const AppState& state, const TweakCatalog& catalog) {
    std::vector<std::string> lines;
    const std::set<EffectClass> effects = pendingEffects(state.pendingRelaunches, catalog);
    for (const Relauncher::Target target : Relauncher::targetsFor(effects)) {
        const Relauncher::TargetFacts& app = Relauncher::facts(target);
        lines.push_back(fmt::format("Relaunch {} to see what was changed: {}.", app.name,
                                    join(waitingTitles(state, catalog, app.effectClass), ", ")));
    }
    return join(lines, "\n");
}

std::string activityText(const Activity& activity) {
    if (activity.total == 0) return activity.what + ".";
    return fmt::format("{}: {} of {}.", activity.what, activity.done, activity.total);
}

}  // namespace brell
