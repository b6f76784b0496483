// The parts that the readers and writers of property lists share. For them alone.
#pragma once

#include <fmt/format.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "BrellCore/Support/PropertyList.h"
#include "BrellCore/Support/Text.h"

namespace brell::plist {

inline constexpr int mostLevels = 128;
inline constexpr std::size_t mostValues = 1'000'000;
inline constexpr std::int64_t start2001 = 978'307'200;  // in seconds since 1970

template <class... Arguments>
[[noreturn]] void refuse(fmt::format_string<Arguments...> reason, Arguments&&... arguments) {
    throw PlistError({fmt::format(reason, std::forward<Arguments>(arguments)...)});
}

// The upper half of the first byte of an object in the binary form.
enum class Kind : std::uint8_t {
    simple = 0x0,
    integer = 0x1,
    real = 0x2,
    date = 0x3,
    data = 0x4,
    ascii = 0x5,
    utf16 = 0x6,
    uid = 0x8,
    array = 0xA,
    dictionary = 0xD,
};

// The values a document may still hold, so that a small hostile file can't become a large value.
class ValueBudget {
public:
    void take(std::size_t values) {
        if (values > left_) refuse("it holds more than a million values");
        left_ -= values;
    }

private:
    std::size_t left_ = mostValues;
};

// The outermost value stands at level 1.
inline void checkLevel(int level) {
    if (level > mostLevels) refuse("it nests more than {} levels", mostLevels);
}

// The entries in the order of their keys; refuses a key that stands twice.
std::vector<const PlistEntry*> sortedUniqueKeys(const PlistDictionary& dictionary);

bool isXmlCharacter(std::int32_t codePoint);

// Where the first byte stands that is not part of an XML character in UTF-8; npos when there is none.
std::size_t firstNonXml(std::string_view text);

std::string_view withoutLeadingBlanks(std::string_view text);

// Appends text of an XML file with its entities decoded; refuses those that stand for no XML character.
void appendDecoded(std::string& text, std::string_view written);

// An optional sign and decimal digits, or hexadecimal ones behind 0x; blanks may stand before and behind the
// sign, as the system's own reader has it.
std::optional<PlistValue> parsePlistInteger(std::string_view text);

// Decimal digits with an optional point and exponent, or a word for an infinity or no number; blanks may
// stand before.
std::optional<double> parsePlistReal(std::string_view text);

// Blanks may stand anywhere; the last group of four is filled up with "=".
std::optional<std::string> decodedBase64(std::string_view text);

PlistValue readXml(std::string_view bytes);
PlistValue readBinary(std::string_view bytes);

}  // namespace brell::plist
