// What the keys of a tweak hold, as people say it: "Large", "On", "41", "not set".
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

// What is small below the text of a row, where it is so: "Medium risk · Relaunches Finder".
std::string noteWords(const Tweak& tweak);

}  // namespace brell
