// Text cut into lines, without copying it.
#pragma once

#include <optional>
#include <string_view>

#include "BrellCore/Support/Text.h"

namespace brell {

// Calls action(line) for every line, without its line feed.
template <class Action>
void forEachLine(std::string_view text, Action&& action) {
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        action(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
}

struct KeyAndValue {
    std::string_view key;  // both without white space around them
    std::string_view value;
};

// Cut at the first separator; nothing when there is none.
inline std::optional<KeyAndValue> splitAtFirst(std::string_view line, std::string_view separator) {
    const std::size_t at = line.find(separator);
    if (at == std::string_view::npos) return std::nullopt;
    return KeyAndValue{stripped(line.substr(0, at)), stripped(line.substr(at + separator.size()))};
}

}  // namespace brell
