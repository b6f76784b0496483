#include "BrellCore/Preferences/PrefValueJson.h"

#include <array>
#include <optional>
#include <stdexcept>

#include "BrellCore/Support/JsonReader.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace json = simdjson::ondemand;

namespace {

constexpr std::array<KnownKey, 3> storedKeys{{{"absent", false}, {"type"}, {"value"}}};

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

PrefValue readStrings(json::value& value) {
    PrefValue::StringArray strings;
    for (auto element : value.get_array()) strings.emplace_back(element.get_string().value());
    return PrefValue(std::move(strings));
}

using PayloadReader = PrefValue (*)(json::value& value);
constexpr std::pair<std::string_view, PayloadReader> payloadReaders[] = {
    {"bool", [](json::value& value) { return PrefValue(value.get_bool().value()); }},
    {"int", [](json::value& value) { return PrefValue(value.get_int64().value()); }},
    {"double", [](json::value& value) { return PrefValue(value.get_double().value()); }},
    {"string", [](json::value& value) { return PrefValue(std::string(value.get_string().value())); }},
    {"stringArray", readStrings}};

PayloadReader readerOf(std::string_view type) {
    for (const auto& [known, reader] : payloadReaders)
        if (type == known) return reader;
    throw std::runtime_error("unknown PrefValue type " + excerpt(type));
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

StoredValue readStoredValue(json::object object) {
    KnownKeys known(storedKeys);
    bool isAbsent = false;
    std::optional<std::string_view> type;
    int fields = 0, valueAt = -1;
    for (auto each : object) {
        json::field&& field = std::move(each);
        const KnownKey* key = known.met(field);
        json::value& value = field.value();
        if (key && key->name == "absent")
            isAbsent = value.get_bool();
        else if (key && key->name == "type" && value.type() == json::json_type::string)
            type = value.get_string().value();
        else if (key && key->name == "value")
            valueAt = fields;  // as what it is to be read may stand behind it
        else
            checkWellFormed(value);
        ++fields;
    }
    // The type comes first: what is wrong with it is said before what else may be.
    const PayloadReader read = !isAbsent && type ? readerOf(*type) : nullptr;
    if (!isAbsent) known.checkAllMet();
    if (!isAbsent && !read) throw simdjson::simdjson_error(simdjson::INCORRECT_TYPE);
    if (valueAt < 0) return {};
    // The second time around no text is read again: the parser has room for each once. But up to the end, as
    // only a value that was read shows what stands between it and the next.
    StoredValue stored;
    object.reset();
    for (auto each : object) {
        json::field&& field = std::move(each);
        if (valueAt-- != 0) continue;
        if (read)
            stored = read(field.value());
        else
            checkWellFormed(field.value());
    }
    return stored;
}

}  // namespace brell
