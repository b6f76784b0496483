// Universally unique identifiers.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace brell {

struct Uuid {
    std::array<unsigned char, 16> bytes{};

    static Uuid random();
    // Any letter case; nothing when the text is not 36 characters in the canonical form.
    static std::optional<Uuid> parse(std::string_view text);
    // The canonical form with upper-case letters.
    std::string text() const;

    bool operator==(const Uuid&) const = default;
    bool operator<(const Uuid& other) const { return bytes < other.bytes; }
};

}  // namespace brell
