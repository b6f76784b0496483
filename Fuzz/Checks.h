// What several targets ask of a reader.
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

// By a reader that looks at every byte. A number of any size is one, but it knows only those of 64 bits.
inline bool isJson(std::string_view text) {
    thread_local simdjson::dom::parser parser;
    const simdjson::error_code error = parser.parse(text.data(), text.size()).error();
    return error == simdjson::SUCCESS || error == simdjson::NUMBER_ERROR;
}

}  // namespace brell::fuzz
