// The text of an enumerator in files and on screen, and the way back.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace brell {

// Specialised for an enumeration whose enumerators count from 0: one text each, in their order.
template <class Enum>
inline constexpr std::array<std::string_view, 0> enumTexts{};

template <class Enum>
constexpr std::string_view rawValue(Enum value) {
    return enumTexts<Enum>[static_cast<std::size_t>(value)];
}

// Nothing for a text that names no enumerator; letter case counts.
template <class Enum>
constexpr std::optional<Enum> fromRawValue(std::string_view text) {
    for (std::size_t i = 0; i < enumTexts<Enum>.size(); ++i)
        if (enumTexts<Enum>[i] == text) return static_cast<Enum>(i);
    return std::nullopt;
}

template <class Enum>
constexpr std::array<Enum, enumTexts<Enum>.size()> allCases() {
    std::array<Enum, enumTexts<Enum>.size()> cases{};
    for (std::size_t i = 0; i < cases.size(); ++i) cases[i] = static_cast<Enum>(i);
    return cases;
}

}  // namespace brell
