#include "BrellCore/Support/Uuid.h"

#include <uuid/uuid.h>

namespace brell {

namespace {

constexpr std::size_t length = 36;
constexpr std::array<std::size_t, 4> dashPlaces{8, 13, 18, 23};
// Where the two digits of each byte stand.
constexpr std::array<std::size_t, 16> digitPlaces{0, 2, 4, 6, 9, 11, 14, 16, 19, 21, 24, 26, 28, 30, 32, 34};

// The values of hexadecimal digits, -1 for every other character. Histories hold identifiers by the hundred
// thousand.
constexpr std::array<signed char, 256> makeHexValues() {
    std::array<signed char, 256> values{};
    for (signed char& value : values) value = -1;
    for (signed char digit = 0; digit < 10; ++digit) values[static_cast<std::size_t>('0' + digit)] = digit;
    for (signed char letter = 0; letter < 6; ++letter)
        for (const char first : {'a', 'A'})
            values[static_cast<std::size_t>(first + letter)] = static_cast<signed char>(10 + letter);
    return values;
}
constexpr std::array<signed char, 256> hexValues = makeHexValues();

int hexValue(char c) {
    return hexValues[static_cast<unsigned char>(c)];
}

}  // namespace

Uuid Uuid::random() {
    Uuid made;
    ::uuid_generate_random(made.bytes.data());
    return made;
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
    if (text.size() != length) return std::nullopt;
    for (const std::size_t place : dashPlaces)
        if (text[place] != '-') return std::nullopt;
    Uuid parsed;
    int seen = 0;  // negative once a character was no digit
    for (std::size_t i = 0; i < digitPlaces.size(); ++i) {
        const int high = hexValue(text[digitPlaces[i]]), low = hexValue(text[digitPlaces[i] + 1]);
        seen |= high | low;
        parsed.bytes[i] = static_cast<unsigned char>(high * 16 + low);
    }
    return seen < 0 ? std::nullopt : std::optional(parsed);
}

std::string Uuid::text() const {
    constexpr char hex[] = "0123456789ABCDEF";
    std::string text(length, '-');
    for (std::size_t i = 0; i < digitPlaces.size(); ++i) {
        text[digitPlaces[i]] = hex[bytes[i] >> 4];
        text[digitPlaces[i] + 1] = hex[bytes[i] & 15];
    }
    return text;
}

}  // namespace brell
