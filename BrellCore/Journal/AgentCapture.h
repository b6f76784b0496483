// What is kept of a LaunchAgent before it is switched.
#pragma once

#include <string>

#include "BrellCore/Support/EnumText.h"

namespace brell {

// launchd's per-user override for a label; absent when it holds none.
enum class AgentOverride { absent, enabled, disabled };
template <>
inline constexpr std::array<std::string_view, 3> enumTexts<AgentOverride>{"absent", "enabled", "disabled"};

// A LaunchAgent before it was changed.
struct AgentCapture {
    std::string label;
    std::string plistPath;  // absolute
    bool wasLoaded;
    AgentOverride override;

    // Whether the change turned it on. It turned off what was not disabled.
    bool turnedOn() const { return override == AgentOverride::disabled; }
    bool operator==(const AgentCapture&) const = default;
};

}  // namespace brell
