// A login item in words: when it runs, and how it fares.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "BrellCore/Background/LoginItems.h"
#include "CorvaneBrell/Model/JobFacts.h"

namespace brell {

// "every hour", "every 6 hours", "once a day"
std::string intervalWords(std::int64_t seconds);

std::string startWords(const LaunchAgentPlist& plist);

// How it fares, where that is worth a sentence: "It keeps crashing and restarting."
std::vector<std::string> conditionWords(const LoginItemRow& row, const JobFacts& facts);

// The row's subtitle: its name, and when it runs.
std::string subtitleWords(const LoginItemRow& row);

}  // namespace brell
