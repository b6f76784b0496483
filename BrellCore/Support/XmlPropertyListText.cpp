// The meaning of the text inside the elements of the XML form.
#include <algorithm>
#include <charconv>
#include <limits>

#include "BrellCore/Support/Numbers.h"
#include "BrellCore/Support/PropertyListParts.h"

namespace brell::plist {

namespace {

constexpr bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The text that an entity stands for, given what is between "&" and ";".
std::optional<std::int32_t> entityCharacter(std::string_view name) {
    constexpr std::pair<std::string_view, char> named[] = {
        {"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"apos", '\''}, {"quot", '"'}};
    for (const auto& [known, character] : named)
        if (name == known) return character;
    if (!name.starts_with('#')) return std::nullopt;
    name.remove_prefix(1);
    const bool hexadecimal = name.starts_with('x');
    if (hexadecimal) name.remove_prefix(1);
    std::int32_t codePoint = 0;
    const char* const end = name.data() + name.size();
    const auto [stop, error] = std::from_chars(name.data(), end, codePoint, hexadecimal ? 16 : 10);
    if (error != std::errc() || stop != end || !isXmlCharacter(codePoint)) return std::nullopt;
    return codePoint;
}

std::optional<unsigned> base64Value(char c) {
    if (c >= 'A' && c <= 'Z') return static_cast<unsigned>(c - 'A');
    if (c >= 'a' && c <= 'z') return static_cast<unsigned>(c - 'a' + 26);
    if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0' + 52);
    if (c == '+') return 62;
    if (c == '/') return 63;
    return std::nullopt;
}

}  // namespace

std::string_view withoutLeadingBlanks(std::string_view text) {
    const auto written = std::find_if_not(text.begin(), text.end(), isBlank);
    return text.substr(static_cast<std::size_t>(written - text.begin()));
}

void appendDecoded(std::string& text, std::string_view written) {
    for (;;) {
        const std::size_t ampersand = std::min(written.find('&'), written.size());
        text += written.substr(0, ampersand);
        written.remove_prefix(ampersand);
        if (written.empty()) return;
        const std::size_t end = written.find(';');
        const std::string_view name =
            end == std::string_view::npos ? written.substr(1) : written.substr(1, end - 1);
        const auto character = entityCharacter(name);
        if (end == std::string_view::npos || !character)
            refuse("&{} stands for no character",
                   excerpt({name.begin(), std::find_if(name.begin(), name.end(), isBlank)}));
        appendUtf8(text, *character);
        written.remove_prefix(end + 1);
    }
}

std::optional<PlistValue> parsePlistInteger(std::string_view text) {
    const std::string_view whole = withoutLeadingBlanks(text);
    std::string_view digits = whole;
    const bool negative = digits.starts_with('-');
    if (negative || digits.starts_with('+')) digits = withoutLeadingBlanks(digits.substr(1));
    const bool hexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
    if (hexadecimal) digits.remove_prefix(2);

    std::uint64_t magnitude = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, magnitude, hexadecimal ? 16 : 10);
    if (stop != end || error == std::errc::invalid_argument) return std::nullopt;
    constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (error == std::errc::result_out_of_range || magnitude > most + (negative ? 1 : 0))
        return PlistValue{PlistBigInteger{std::string(whole)}};
    return PlistValue{static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude)};
}

std::optional<double> parsePlistReal(std::string_view text) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr std::pair<std::string_view, double> words[] = {
        {"nan", std::numeric_limits<double>::quiet_NaN()},
        {"inf", infinity},
        {"+inf", infinity},
        {"-inf", -infinity},
        {"infinity", infinity},
        {"+infinity", infinity},
        {"-infinity", -infinity}};
    text = withoutLeadingBlanks(text);
    if (text.find_first_not_of("0123456789+-.eE") == std::string_view::npos) return parseReal(text);
    const std::string lower = lowerCaseAscii(text);
    for (const auto& [word, number] : words)
        if (lower == word) return number;
    return std::nullopt;
}

std::optional<std::string> decodedBase64(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3);
    std::uint32_t group = 0;
    int digits = 0, fill = 0;
    for (const char c : text) {
        if (isBlank(c)) continue;
        const bool filling = c == '=' && digits >= 2;
        const auto value = filling ? 0u : base64Value(c);
        if (!value || (fill > 0 && !filling)) return std::nullopt;
        group = group << 6 | *value;
        if (filling) ++fill;
        if (++digits < 4) continue;
        for (int i = 0; i < 3 - fill; ++i) bytes += static_cast<char>(group >> (16 - 8 * i) & 0xFF);
        group = 0;
        digits = 0;  // fill stays: nothing may follow a group that was filled up
    }
    if (digits != 0) return std::nullopt;
    return bytes;
}

}  // namespace brell::plist
