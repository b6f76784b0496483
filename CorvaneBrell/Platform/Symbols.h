// The system's own symbols, by name, as pixels.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace brell {

// A square picture without a colour of its own: how much of each pixel is covered, to be filled with any
// colour.
struct SymbolImage {
    int side = 0;                        // in pixels
    std::vector<std::uint8_t> coverage;  // side x side bytes, row by row from the top; 255 is wholly covered
    bool operator==(const SymbolImage&) const = default;
};

// The symbol of this name, such as "folder" or "clock.arrow.circlepath", as large as fits into a square of so
// many points, on a screen with scale pixels to the point. Nothing when the system has none of that name; off
// macOS always. Main thread only.
std::optional<SymbolImage> systemSymbol(const std::string& name, int points, double scale);

}  // namespace brell
