// The words of the bars above the pages.
#pragma once

#include <string>
#include <vector>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "CorvaneBrell/Model/AppState.h"

namespace brell {

// Changes of an earlier run whose recovery was put off; empty when there is none.
std::string interruptedText(const AppState& state);

// The titles of the tweaks that wait for this effect.
std::vector<std::string> waitingTitles(const AppState& state, const TweakCatalog& catalog,
                                       EffectClass effect);

// Which app shows which changes only when it starts again, one line an app; empty when none does.
std::string relaunchText(const AppState& state, const TweakCatalog& catalog);

// "Restoring changes: 3 of 12."
std::string activityText(const Activity& activity);

}  // namespace brell
