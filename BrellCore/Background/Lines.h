// Text cut into lines, without copying it.
#pragma once

#include <optional>
#include <string_view>

namespace brell {

inline bool isWhite(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// As trimmed(), but inline: a dump has a hundred thousand lines, most of them with a wide margin.
inline std::string_view stripped(std::string_view text) {
    while (!text.empty() && isWhite(text.front())) text.remove_prefix(1);
    while (!text.empty() && isWhite(text.back())) text.remove_suffix(1);
    return text;
}

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
