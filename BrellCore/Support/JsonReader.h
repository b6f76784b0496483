// The steps around reading a JSON text with simdjson on demand.
#pragma once

#include <simdjson.h>

#include <array>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace brell {

// Starts on a text that readFile brought with simdjson's padding behind it. Raises simdjson_error for text
// that is not UTF-8 or not JSON in its outlines; what lies deeper is checked as it is read.
inline simdjson::ondemand::document startReading(simdjson::ondemand::parser& parser,
                                                 const std::string& padded) {
    return parser.iterate(simdjson::padded_string_view(padded.data(), padded.size(), padded.capacity()));
}

// Reads a value that nobody wants, whatever the size of its numbers: what is passed over unread may be no
// JSON at all. Deeper than this many levels it is passed over all the same. Raises simdjson_error and
// std::runtime_error.
void checkWellFormed(simdjson::ondemand::value value, int levels = 64);

// The integer under "format" of a whole JSON object; nothing when it has none, or two. Anything else in the
// object does not matter, be it more than anybody here can read: so that a newer file counts as newer and not
// as broken.
std::optional<std::int64_t> formatOf(const std::string& padded);

// The keys an object may have, each at most once, ticked off as they are met; at most 32. The first
// `required` of them it must have.
template <std::size_t count>
class KnownKeys {
public:
    constexpr KnownKeys(const std::array<std::string_view, count>& keys, std::size_t required)
        : keys_(keys), required_(required) {}

    // True for one of them.
    bool met(std::string_view key) {
        for (std::size_t i = 0; i < count; ++i) {
            if (keys_[i] != key) continue;
            if ((met_ & 1u << i) != 0)
                throw std::runtime_error("the key \"" + std::string(key) + "\" stands twice");
            met_ |= 1u << i;
            return true;
        }
        return false;
    }
    void checkAllMet() const {
        for (std::size_t i = 0; i < required_; ++i)
            if ((met_ & 1u << i) == 0)
                throw std::runtime_error("the key \"" + std::string(keys_[i]) + "\" is missing");
    }

private:
    const std::array<std::string_view, count>& keys_;
    const std::size_t required_;
    unsigned met_ = 0;
};

// True when nothing but white space follows the value that was read to its end.
inline bool isAtEnd(simdjson::ondemand::document& document) {
    return document.current_location().error() == simdjson::OUT_OF_BOUNDS;
}

}  // namespace brell
