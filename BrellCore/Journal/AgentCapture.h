// The state of a LaunchAgent that is kept before it is switched.
#pragma once

#include <string>

#include "BrellCore/Support/EnumText.h"

namespace brell {

// launchd's per-user override for a label; absent when it holds none. One that a job file makes up for by
// saying "Disabled" itself counts as disabled.
enum class AgentOverride { absent, enabled, disabled };
template <>
inline constexpr std::array<std::string_view, 3> enumTexts<AgentOverride>{"absent", "enabled", "disabled"};

// A LaunchAgent before it was changed.
struct AgentCapture {
    std::string label;
    std::string plistPath;  // absolute
    bool wasLoaded;
    AgentOverride override;

    // True when the change turned it on: an agent that was not disabled was turned off.
    bool turnedOn() const { return override == AgentOverride::disabled; }
    bool operator==(const AgentCapture&) const = default;
};

}  // namespace brell
