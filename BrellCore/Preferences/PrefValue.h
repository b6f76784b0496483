// The one typed value of a preference. Five kinds can be written; every other kind of property list is
// reported and never changed.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "BrellCore/Support/PropertyList.h"

namespace brell {

struct PrefValue {
    using StringArray = std::vector<std::string>;
    // In the order of typeNames.
    using Payload = std::variant<bool, std::int64_t, double, std::string, StringArray>;
    Payload payload;

    PrefValue(bool value) : payload(value) {}
    PrefValue(int value) : payload(std::int64_t{value}) {}
    PrefValue(std::int64_t value) : payload(value) {}
    PrefValue(double value) : payload(value) {}
    PrefValue(const char* value) : payload(std::string(value)) {}
    PrefValue(std::string value) : payload(std::move(value)) {}
    PrefValue(StringArray value) : payload(std::move(value)) {}

    // Nothing for a property list of another kind, an array with anything but strings, or text that the XML
    // form can't hold and that could therefore not be put back.
    static std::optional<PrefValue> fromPropertyList(const PlistValue& object);

    template <class T>
    const T* as() const {
        return std::get_if<T>(&payload);
    }

    std::string_view typeName() const;  // "bool", "int", "double", "string", "stringArray"
    std::string_view defaultsFlag()
        const;                     // the type flag of `defaults write`: "-bool", ...; "-float" for double
    std::string rendered() const;  // for people: true, 36, 0.15, "text", ["a", "b"]
    PlistValue propertyListObject() const;

    // Same kind and equal payload; doubles compare numerically.
    bool operator==(const PrefValue&) const = default;
};

// The word for a property list that fromPropertyList refuses: "dictionary", "array (not all strings)", ...
std::string propertyListTypeName(const PlistValue& object);

// The value that a store holds for a key.
struct StoredValue {
    std::optional<PrefValue> value;

    StoredValue() = default;  // absent
    static StoredValue absent() { return {}; }
    StoredValue(PrefValue stored) : value(std::move(stored)) {}

    bool isAbsent() const { return !value; }
    std::string rendered() const { return value ? value->rendered() : "absent"; }
    bool operator==(const StoredValue&) const = default;
};

}  // namespace brell
