// Checks of a reader that several targets share.
#pragma once

#include <simdjson.h>

#include <cstdlib>
#include <string>
#include <string_view>

#include "BrellCore/Support/Text.h"

namespace brell::fuzz {

inline void require(bool holds) {
    if (!holds) std::abort();
}

// As readFile brings it: with simdjson's padding behind it.
inline std::string padded(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size() + simdjson::SIMDJSON_PADDING);
    text += bytes;
    return text;
}

// A reason to be put into a sentence: something, on one line, without a stop of its own. That of a long
// excerpt is none.
inline bool isReason(std::string_view text) {
    return !text.empty() && oneLine(text) == text && (!text.ends_with('.') || text.ends_with("..."));
}

// By a reader that looks at every byte, but knows only numbers of 64 bits: all are shortened for it. They
// stay well-formed by that, or malformed.
inline bool isJson(std::string_view text) {
    constexpr std::size_t mostDigits = 2;  // of a number, or of its exponent
    std::string shortened;
    std::size_t digits = 0;
    bool isInText = false, isEscaped = false;
    for (const char c : text) {
        if (c == '"' && !isEscaped) isInText = !isInText;
        isEscaped = isInText && c == '\\' && !isEscaped;
        digits = !isInText && c >= '0' && c <= '9' ? digits + 1 : 0;
        if (digits <= mostDigits) shortened += c;
    }
    thread_local simdjson::dom::parser parser;
    return parser.parse(shortened).error() == simdjson::SUCCESS;
}

}  // namespace brell::fuzz
