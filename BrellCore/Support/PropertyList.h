// Property lists, the format of macOS's preference and job files: a typed value, read from the XML and the
// binary form and written as either. The forms are those of the plist(5) manual page and of CoreFoundation's
// published sources.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "BrellCore/Support/Failure.h"

namespace brell {

struct PlistEntry;
struct PlistValue;

// An integer outside the signed 64 bits, as its decimal or hexadecimal text; kept only to name its kind.
struct PlistBigInteger {
    std::string text;
    bool operator==(const PlistBigInteger&) const = default;
};
struct PlistData {
    std::string bytes;
    bool operator==(const PlistData&) const = default;
};
struct PlistDate {
    double seconds;  // since 2001-01-01 00:00 UTC
    bool operator==(const PlistDate&) const = default;
};
struct PlistUid {
    std::uint64_t number;
    bool operator==(const PlistUid&) const = default;
};

using PlistArray = std::vector<PlistValue>;

// Entries in the file's order, each key once. The order does not count when two are compared.
struct PlistDictionary {
    std::vector<PlistEntry> entries;

    const PlistValue* find(std::string_view key) const;
    void set(std::string key, PlistValue value);  // replaces in place, else appends
    bool remove(std::string_view key);            // false when it was not there
    bool operator==(const PlistDictionary&) const;
};

struct PlistValue {
    using Payload = std::variant<bool, std::int64_t, PlistBigInteger, double, std::string, PlistData,
                                 PlistDate, PlistUid, PlistArray, PlistDictionary>;
    Payload payload;

    template <class T>
    const T* as() const {
        return std::get_if<T>(&payload);
    }
    bool operator==(const PlistValue&) const = default;
};

// A type of its own: clang and libstdc++ together can't complete a std::pair that is part of itself.
struct PlistEntry {
    PlistEntry(std::string itsKey, PlistValue itsValue)
        : key(std::move(itsKey)), value(std::move(itsValue)) {}

    std::string key;
    PlistValue value;
    bool operator==(const PlistEntry&) const = default;
};

struct PlistFailure {
    std::string reason;  // no final stop
    bool operator==(const PlistFailure&) const = default;
};
std::string describe(const PlistFailure& failure);

class PlistError final : public FailureError<PlistFailure> {
public:
    using FailureError::FailureError;
    ~PlistError() override;
};

// Reads either form, told apart by the first bytes. Raises PlistError for anything that is not exactly one
// well-formed property list, its text in UTF-8 when it is XML: cut short, malformed numbers, text with
// undefined entities, duplicate keys, sets, more than 128 levels, binary objects that contain themselves or
// lie over each other, more than a million values. Takes time and memory in proportion to the bytes.
PlistValue readPropertyList(std::string_view bytes);

// The XML form, ended by a line feed; dictionaries with sorted keys. Raises PlistError for what the form
// can't hold: text that is not isXmlText, dates outside the years 1 to 9999 or with fractions of a second,
// integers beyond 64 bits, UIDs, a key that stands twice; and for more levels or values than are read.
std::string writeXmlPropertyList(const PlistValue& value);

// The binary form. Raises PlistError for text that is not UTF-8, integers beyond 64 bits, a key that stands
// twice; and for more levels or values than are read.
std::string writeBinaryPropertyList(const PlistValue& value);

// True when the XML form can hold this text: UTF-8 without U+FFFE, U+FFFF and control characters other than
// tab, line feed and carriage return.
bool isXmlText(std::string_view text);

}  // namespace brell
