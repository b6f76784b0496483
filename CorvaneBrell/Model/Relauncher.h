// Quits and reopens the apps that show a change only when they start again. Never forces a quit: an app that
// does not go is left running, and the outcome says so.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "BrellCore/Catalog/Tweak.h"
#include "BrellCore/Support/EnumText.h"
#include "CorvaneBrell/Platform/MainLoop.h"
#include "CorvaneBrell/Platform/RunningApplications.h"

namespace brell {

namespace Relauncher {

enum class Target { dock, finder };

enum class Outcome { relaunched, openedNotRunning, openFailed, didNotQuit, didNotReopen, dryRun };

}  // namespace Relauncher

template <>
inline constexpr std::array<std::string_view, 2> enumTexts<Relauncher::Target>{"dock", "finder"};

namespace Relauncher {

struct TargetFacts {
    std::string_view bundleIdentifier;
    std::string_view path;
    std::string_view name;  // in messages
    EffectClass effectClass;
};
inline constexpr std::array<TargetFacts, 2> targetFacts{{
    {"com.apple.dock", "/System/Library/CoreServices/Dock.app", "the Dock", EffectClass::dockRelaunch},
    {"com.apple.finder", "/System/Library/CoreServices/Finder.app", "Finder", EffectClass::finderRelaunch},
}};
constexpr const TargetFacts& facts(Target target) {
    return targetFacts[static_cast<std::size_t>(target)];
}

// The Dock first. Other effects need no relaunch.
std::vector<Target> targetsFor(const std::set<EffectClass>& effects);

std::string_view message(Outcome outcome);
// The pending effect is no longer pending. A dry run counts, so that it looks as a real run does.
bool isDone(Outcome outcome);

// For the user: "The Dock relaunched."
std::string line(Target target, Outcome outcome);

// A relaunch under way. Letting go of it calls the rest off, and `done` is then not called.
class Running;
using Handle = std::shared_ptr<Running>;

// Main thread only; never blocks. done is called once, after this has returned and at most 15 seconds later,
// without the time that the platform takes to answer the opening; it may let go of the handle. apps and loop
// must outlive the handle.
[[nodiscard]] Handle relaunch(Target target, bool dryRun, RunningApplications& apps, MainLoop& loop,
                              std::function<void(Outcome)> done);

}  // namespace Relauncher

}  // namespace brell
