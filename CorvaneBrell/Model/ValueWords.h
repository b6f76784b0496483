// The values of a tweak's keys, as people say them: "Large", "On", "41", "not set".
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "BrellCore/Catalog/TweakCatalog.h"

namespace brell {

// A path below the user's home begins with "~".
std::string pathWords(std::string_view path, std::string_view home);

// Of values that are one for each write of the tweak, in their order. No key and no domain is named. What
// came from outside is on one line and not longer than a message.
std::string valueWords(const Tweak& tweak, const std::vector<StoredValue>& values, std::string_view home);

// "Medium risk"; nothing of a low one.
std::string riskWords(Risk risk);

// The small words below the text of a row, where they are so: "Medium risk · Relaunches Finder".
std::string noteWords(const Tweak& tweak);

}  // namespace brell
