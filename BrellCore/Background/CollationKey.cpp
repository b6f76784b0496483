#include "BrellCore/Background/CollationKey.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

struct Free {
    void operator()(utf8proc_uint8_t* bytes) const { std::free(bytes); }
};

std::string mapped(std::string_view text, int options) {
    utf8proc_uint8_t* bytes = nullptr;
    const auto length = utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                     static_cast<utf8proc_ssize_t>(text.size()), &bytes,
                                     static_cast<utf8proc_option_t>(options));
    const std::unique_ptr<utf8proc_uint8_t, Free> owner(bytes);
    // Only memory can be short: the text is UTF-8 by now.
    if (length < 0) return std::string(text);
    return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length)};
}

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string asciiFolded(std::string_view text) {
    std::string folded(text);
    for (char& c : folded)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return folded;
}

}  // namespace

std::string collationKey(std::string_view text) {
    constexpr char separator = '\0';  // before every character, so that a shorter text comes first
    if (isAscii(text)) {
        const std::string folded = asciiFolded(text);
        return folded + separator + folded;
    }
    constexpr int fold = UTF8PROC_STABLE | UTF8PROC_COMPAT | UTF8PROC_DECOMPOSE | UTF8PROC_CASEFOLD;
    const std::string repaired = repairedUtf8(text);
    return mapped(repaired, fold | UTF8PROC_STRIPMARK) + separator + mapped(repaired, fold);
}

}  // namespace brell
