// When a login item runs, as people say it: "at login, every hour".
#pragma once

#include <cstdint>
#include <string>

#include "BrellCore/Background/LoginItems.h"

namespace brell {

// "every hour", "every 6 hours", "once a day"
std::string intervalWords(std::int64_t seconds);

std::string startWords(const LaunchAgentPlist& plist);

// The row's subtitle: its name, and when it runs.
std::string subtitleWords(const LoginItemRow& row);

}  // namespace brell
