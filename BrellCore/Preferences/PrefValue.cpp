#include "BrellCore/Preferences/PrefValue.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "BrellCore/Support/Numbers.h"

namespace brell {

namespace {

constexpr std::array<std::string_view, std::variant_size_v<PrefValue::Payload>> typeNames{
    "bool", "int", "double", "string", "stringArray"};
constexpr std::array<std::string_view, typeNames.size()> defaultsFlags{"-bool", "-int", "-float", "-string",
                                                                       "-array"};

std::string quoted(const std::string& text) {
    return '"' + text + '"';
}

std::string renderedNumber(double number) {
    if (std::fabs(number) < 1e9 && std::nearbyint(number) == number) return fmt::format("{:.1f}", number);
    return shortestDecimal(number);
}

std::string renderedArray(const PrefValue::StringArray& elements) {
    std::string text = "[";
    for (const std::string& element : elements) {
        if (text.size() > 1) text += ", ";
        text += quoted(element);
    }
    return text + "]";
}

struct Renderer {
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(std::int64_t value) const { return std::to_string(value); }
    std::string operator()(double value) const { return renderedNumber(value); }
    std::string operator()(const std::string& value) const { return quoted(value); }
    std::string operator()(const PrefValue::StringArray& value) const { return renderedArray(value); }
};

std::optional<PrefValue> stringArray(const PlistArray& array) {
    PrefValue::StringArray strings;
    for (const PlistValue& element : array) {
        const auto* text = element.as<std::string>();
        if (!text || !isXmlText(*text)) return std::nullopt;
        strings.push_back(*text);
    }
    return strings;
}

bool holdsOnlyStrings(const PlistArray& array) {
    return std::all_of(array.begin(), array.end(),
                       [](const PlistValue& element) { return element.as<std::string>() != nullptr; });
}

struct TypeWord {
    // The first four, and arrays of strings, only come here with text that the XML form can't hold; the words
    // then say so.
    std::string operator()(bool) const { return "boolean"; }
    std::string operator()(std::int64_t) const { return "number"; }
    std::string operator()(double) const { return "number"; }
    std::string operator()(const std::string&) const {
        return "string (with characters a property list can't hold)";
    }
    std::string operator()(const PlistArray& array) const {
        return holdsOnlyStrings(array) ? "array (with characters a property list can't hold)"
                                       : "array (not all strings)";
    }
    std::string operator()(const PlistBigInteger&) const { return "number (out of range)"; }
    std::string operator()(const PlistData&) const { return "data"; }
    std::string operator()(const PlistDate&) const { return "date"; }
    std::string operator()(const PlistUid&) const { return "unique identifier"; }
    std::string operator()(const PlistDictionary&) const { return "dictionary"; }
};

}  // namespace

std::optional<PrefValue> PrefValue::fromPropertyList(const PlistValue& object) {
    if (const auto* value = object.as<bool>()) return PrefValue(*value);
    if (const auto* value = object.as<std::int64_t>()) return PrefValue(*value);
    if (const auto* value = object.as<double>()) return PrefValue(*value);
    if (const auto* value = object.as<std::string>(); value && isXmlText(*value)) return PrefValue(*value);
    if (const auto* value = object.as<PlistArray>()) return stringArray(*value);
    return std::nullopt;
}

std::string_view PrefValue::typeName() const {
    return typeNames[payload.index()];
}

std::string_view PrefValue::defaultsFlag() const {
    return defaultsFlags[payload.index()];
}

std::string PrefValue::rendered() const {
    return std::visit(Renderer(), payload);
}

PlistValue PrefValue::propertyListObject() const {
    if (const auto* strings = as<StringArray>()) {
        PlistArray array;
        for (const std::string& text : *strings) array.push_back({text});
        return {std::move(array)};
    }
    if (const auto* value = as<bool>()) return {*value};
    if (const auto* value = as<std::int64_t>()) return {*value};
    if (const auto* value = as<double>()) return {*value};
    return {std::get<std::string>(payload)};
}

std::string propertyListTypeName(const PlistValue& object) {
    return std::visit(TypeWord(), object.payload);
}

}  // namespace brell
