#include "BrellCore/Support/Numbers.h"

#include <locale.h>
#ifdef __APPLE__
#include <xlocale.h>
#endif

#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace brell {

namespace {

// Between these magnitudes digits are written out, beyond them with an exponent.
constexpr double leastFixed = 1e-4;
constexpr double leastScientific = 0x1p54;

locale_t classicLocale() {
    static const locale_t locale = ::newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    return locale;
}

}  // namespace

std::string shortestDecimal(double number) {
    if (std::isnan(number)) return "nan";
    if (std::isinf(number)) return number > 0 ? "inf" : "-inf";
    const double magnitude = std::fabs(number);
    const bool fixed = magnitude == 0 || (magnitude >= leastFixed && magnitude < leastScientific);
    std::array<char, 64> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                   fixed ? std::chars_format::fixed : std::chars_format::scientific);
    std::string text(buffer.data(), end.ptr);
    if (fixed && text.find('.') == std::string::npos) text += ".0";
    return text;
}

std::optional<std::int64_t> parseInteger(std::string_view text) {
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
    return number;
}

std::optional<double> parseReal(std::string_view text) {
    // strtod also takes leading blanks and hexadecimal digits, and stops at a zero byte.
    if (text.empty() || text.find_first_of(std::string_view(" \t\n\v\f\rxX\0", 9)) != std::string_view::npos)
        return std::nullopt;
    const std::string terminated(text);
    char* end = nullptr;
    const double number = ::strtod_l(terminated.c_str(), &end, classicLocale());
    if (end != terminated.c_str() + terminated.size()) return std::nullopt;
    const bool spelledInfinity = text.find_first_of("iI") != std::string_view::npos;
    if (std::isinf(number) && !spelledInfinity) return std::nullopt;
    return number;
}

}  // namespace brell
