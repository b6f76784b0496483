// The program's work without a window, for scripts and automated checks: one line of text for each result,
// and an exit status.
#pragma once

#include <functional>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "BrellCore/Engine/TweakStatus.h"
#include "CorvaneBrell/LaunchOptions.h"

namespace brell {

namespace ExitStatus {
inline constexpr int success = 0;
inline constexpr int failure = 1;      // something was refused, failed or is still active
inline constexpr int cannotStart = 2;  // nothing was tried
}  // namespace ExitStatus

namespace HeadlessCommands {

// Performs what the options ask for and gives the exit status; nothing when they ask for nothing. A thing
// that could stand in the way of a change is said to warnings before the first one.
std::optional<int> runIfRequested(const LaunchOptions& options, std::ostream& out,
                                  std::ostream& warnings = std::cerr);

// Applies each of these, with a line for each, and gives whether all went well. When one has waited in vain
// for another Brell, the rest is refused at once instead of waiting as long again.
bool applyEach(const std::vector<const Tweak*>& tweaks, const std::function<void(const Tweak&)>& apply,
               std::ostream& out);

// The state as scripts read it: onByBrell(UUID), perHost(key: "NAME"), off, ...
std::string describe(const TweakState& state);

}  // namespace HeadlessCommands

}  // namespace brell
