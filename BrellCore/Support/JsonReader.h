// The steps around reading a JSON text with simdjson on demand.
#pragma once

#include <simdjson.h>

#include <string>

namespace brell {

// Starts on a text that readFile brought with simdjson's padding behind it. Raises simdjson_error for text
// that is not UTF-8 or not JSON in its outlines; what lies deeper is checked as it is read.
inline simdjson::ondemand::document startReading(simdjson::ondemand::parser& parser,
                                                 const std::string& padded) {
    return parser.iterate(simdjson::padded_string_view(padded.data(), padded.size(), padded.capacity()));
}

// Reads a value that nobody wants. What is passed over unread may be no JSON at all. Raises simdjson_error,
// and std::runtime_error for more levels than anybody needs.
void checkWellFormed(simdjson::ondemand::value value, int levels = 64);

// True when nothing but white space follows the value that was read to its end.
inline bool isAtEnd(simdjson::ondemand::document& document) {
    return document.current_location().error() == simdjson::OUT_OF_BOUNDS;
}

}  // namespace brell
