// Text order for people, the same on every machine.
#pragma once

#include <string>
#include <string_view>

namespace brell {

// Keys compare as bytes. Letter case does not count; accents only between texts that are otherwise the same,
// so that "éclair" stands beside "Eclipse". Made from Unicode's case folding and compatibility decomposition,
// not from the C library's locale, so that a list has one order everywhere and a key is made once for each
// text. Bytes that are not UTF-8 count as U+FFFD.
std::string collationKey(std::string_view text);

}  // namespace brell
