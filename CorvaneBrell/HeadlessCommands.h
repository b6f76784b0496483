// What the program does without a window, for scripts and automated checks: one line of text for each result,
// and an exit status.
#pragma once

#include <iostream>
#include <optional>
#include <string>

#include "BrellCore/Engine/TweakStatus.h"
#include "CorvaneBrell/LaunchOptions.h"

namespace brell {

namespace ExitStatus {
inline constexpr int success = 0;
inline constexpr int failure = 1;      // something was refused, failed or is still active
inline constexpr int cannotStart = 2;  // nothing was tried
}  // namespace ExitStatus

namespace HeadlessCommands {

// Performs what the options ask for and gives the exit status; nothing when they ask for nothing. What could
// stand in the way of a change is said to warnings before the first one.
std::optional<int> runIfRequested(const LaunchOptions& options, std::ostream& out,
                                  std::ostream& warnings = std::cerr);

// The state as scripts read it: onByBrell(UUID), perHost(key: "NAME"), off, ...
std::string describe(const TweakState& state);

}  // namespace HeadlessCommands

}  // namespace brell
