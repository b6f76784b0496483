// Numbers as text, the same under every locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace brell {

// The shortest decimal form that reads back to the same number, always with a point or an exponent: 0.15,
// 2.0, 1000000000.0, 1e-05, 1e+17. Not-a-number and the infinities give nan, inf and -inf.
std::string shortestDecimal(double number);

// The whole text as a number; nothing when anything else stands in it, blanks included, or when it does not
// fit. An integer takes an optional sign; a real takes what strtod takes in the C locale, without hexadecimal
// forms.
std::optional<std::int64_t> parseInteger(std::string_view text);
std::optional<double> parseReal(std::string_view text);

}  // namespace brell
