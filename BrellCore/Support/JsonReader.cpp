#include "BrellCore/Support/JsonReader.h"

#include <stdexcept>

namespace brell {

namespace json = simdjson::ondemand;

void checkWellFormed(json::value value, int levels) {
    if (levels == 0) throw std::runtime_error("a value nests too deeply");
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
        case json::json_type::number: static_cast<void>(value.get_double().value()); return;
        case json::json_type::string: static_cast<void>(value.get_string().value()); return;
        case json::json_type::boolean: static_cast<void>(value.get_bool().value()); return;
        case json::json_type::null:
            if (value.is_null()) return;
            break;
        default: break;  // newer releases of simdjson have a type for what is none
    }
    throw std::runtime_error("a word is none of JSON's");
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
