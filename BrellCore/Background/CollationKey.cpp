#include "BrellCore/Background/CollationKey.h"

#include "BrellCore/Support/Text.h"

namespace brell {

std::string collationKey(std::string_view text) {
    constexpr char separator = '\0';  // before every character, so that a shorter text comes first
    if (isAscii(text)) {
        const std::string folded = lowerCaseAscii(text);
        return folded + separator + folded;
    }
    const std::string repaired = repairedUtf8(text);
    return caseFolded(repaired, Accents::dropped) + separator + caseFolded(repaired, Accents::kept);
}

}  // namespace brell
