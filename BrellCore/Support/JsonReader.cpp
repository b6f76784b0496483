#include "BrellCore/Support/JsonReader.h"

#include <algorithm>
#include <stdexcept>

#include "BrellCore/Support/Text.h"

namespace brell {

namespace json = simdjson::ondemand;

namespace {

std::size_t cutDigits(std::string_view& text) {
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    text.remove_prefix(digits);
    return digits;
}

// A number in JSON's form, also one that no type of ours holds. Only JSON's own white space may follow it.
bool isNumber(std::string_view text) {
    if (text.starts_with('-')) text.remove_prefix(1);
    const bool leadingZero = text.starts_with('0');
    const std::size_t digits = cutDigits(text);
    if (digits == 0 || (leadingZero && digits > 1)) return false;
    if (text.starts_with('.')) {
        text.remove_prefix(1);
        if (cutDigits(text) == 0) return false;
    }
    if (text.starts_with('e') || text.starts_with('E')) {
        text.remove_prefix(1);
        if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
        if (cutDigits(text) == 0) return false;
    }
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

}  // namespace

void checkWellFormed(json::value value, int levels) {
    if (levels == 0) return;
    switch (value.type()) {
        case json::json_type::array:
            for (auto element : value.get_array()) checkWellFormed(element.value(), levels - 1);
            return;
        case json::json_type::object:
            for (auto field : value.get_object()) {
                static_cast<void>(field.unescaped_key().value());
                checkWellFormed(field.value(), levels - 1);
            }
            return;
        case json::json_type::number:
            if (isNumber(value.raw_json_token())) return;
            break;
        case json::json_type::string: static_cast<void>(value.get_string().value()); return;
        case json::json_type::boolean: static_cast<void>(value.get_bool().value()); return;
        case json::json_type::null:
            if (value.is_null()) return;
            break;
        default: break;  // newer releases of simdjson have a type for what is none
    }
    throw std::runtime_error("a word or number is none of JSON's");
}

std::optional<std::int64_t> formatOf(const std::string& padded) try {
    std::optional<std::int64_t> format;
    json::parser parser;
    json::document document = startReading(parser, padded);
    for (auto field : document.get_object()) {
        if (field.unescaped_key().value() != "format") continue;
        if (format) return std::nullopt;
        format = field.value().get_int64();
    }
    return isAtEnd(document) ? format : std::nullopt;
} catch (const simdjson::simdjson_error&) {
    return std::nullopt;
}

}  // namespace brell
