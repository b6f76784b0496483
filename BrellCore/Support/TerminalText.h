// Which characters do more to a terminal, or to a line, than stand in it.
#pragma once

#include <cstdint>

namespace brell {

// Controls, line and paragraph separators, and the marks that turn the direction of what follows them. All
// lie below U+10000.
constexpr bool steersATerminal(std::int32_t codePoint) {
    return codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0) ||
           (codePoint >= 0x2028 && codePoint <= 0x202E) || (codePoint >= 0x2066 && codePoint <= 0x2069);
}

}  // namespace brell
