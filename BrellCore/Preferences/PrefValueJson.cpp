#include "BrellCore/Preferences/PrefValueJson.h"

#include <stdexcept>

#include "BrellCore/Support/JsonReader.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace json = simdjson::ondemand;

namespace {

struct PayloadWriter {
    JsonWriter& json;
    void operator()(bool value) const { json.boolean(value); }
    void operator()(std::int64_t value) const { json.integer(value); }
    void operator()(double value) const { json.real(value); }
    void operator()(const std::string& value) const { json.string(value); }
    void operator()(const PrefValue::StringArray& value) const {
        json.beginArray();
        for (const std::string& element : value) json.string(element);
        json.endArray();
    }
};

PrefValue readPayload(std::string_view type, json::value value) {
    if (type == "bool") return PrefValue(value.get_bool().value());
    if (type == "int") return PrefValue(value.get_int64().value());
    if (type == "double") return PrefValue(value.get_double().value());
    if (type == "string") return PrefValue(std::string(value.get_string().value()));
    if (type != "stringArray") throw std::runtime_error("unknown PrefValue type " + excerpt(type));
    PrefValue::StringArray strings;
    for (auto element : value.get_array()) strings.emplace_back(element.get_string().value());
    return PrefValue(std::move(strings));
}

}  // namespace

void writeJson(JsonWriter& json, const PrefValue& value) {
    json.beginObject();
    json.key("type");
    json.string(value.typeName());
    json.key("value");
    std::visit(PayloadWriter{json}, value.payload);
    json.endObject();
}

void writeJson(JsonWriter& json, const StoredValue& value) {
    if (value.value) return writeJson(json, *value.value);
    json.beginObject();
    json.key("absent");
    json.boolean(true);
    json.endObject();
}

PrefValue readPrefValue(json::object object) {
    // Looked up by name, type first: the value's JSON type follows from it.
    const std::string type(object["type"].get_string().value());
    return readPayload(type, object["value"].value());
}

StoredValue readStoredValue(json::object object) {
    // Each text is read once: the parser has room for no more, and checks nothing.
    std::optional<std::string_view> type;
    std::optional<PrefValue> value;
    std::optional<bool> absent;
    int values = 0;
    for (auto field : object) {
        const std::string_view key = field.unescaped_key();
        if ((key == "absent" && absent) || (key == "type" && type) || (key == "value" && ++values > 1))
            throw std::runtime_error("the key \"" + std::string(key) + "\" stands twice");
        if (key == "absent")
            absent = field.value().get_bool().value();
        else if (key == "type")
            type = field.value().get_string().value();
        else if (key != "value")
            checkWellFormed(field.value());
        else if (type)
            value = readPayload(*type, field.value());
    }
    const bool isAbsent = absent.value_or(false);
    if (isAbsent && (value || values == 0)) return {};
    if (value) return *std::move(value);
    object.reset();  // the value stands before its type, or one of them is missing
    if (!isAbsent) return type ? readPayload(*type, object["value"].value()) : readPrefValue(object);
    checkWellFormed(object["value"].value());
    return {};
}

}  // namespace brell
