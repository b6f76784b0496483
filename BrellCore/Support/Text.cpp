#include "BrellCore/Support/Text.h"

#include <fmt/format.h>
#include <utf8proc.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace brell {

namespace {

constexpr std::size_t mostShown = 8;                      // of a list that may have thousands
constexpr std::string_view replacement = "\xEF\xBF\xBD";  // U+FFFD

enum class SlugClass { word, mark, separator };

SlugClass slugClass(std::int32_t codePoint) {
    switch (codePoint < 0 ? UTF8PROC_CATEGORY_CN : utf8proc_category(codePoint)) {
        case UTF8PROC_CATEGORY_LU:
        case UTF8PROC_CATEGORY_LL:
        case UTF8PROC_CATEGORY_LT:
        case UTF8PROC_CATEGORY_LM:
        case UTF8PROC_CATEGORY_LO:
        case UTF8PROC_CATEGORY_ND: return SlugClass::word;
        case UTF8PROC_CATEGORY_MN:
        case UTF8PROC_CATEGORY_MC:
        case UTF8PROC_CATEGORY_ME: return SlugClass::mark;
        default: return SlugClass::separator;
    }
}

// Of a character that began before.
bool isContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

}  // namespace

std::int32_t nextCodePoint(std::string_view& text) {
    const auto first = static_cast<unsigned char>(text.front());
    if (first < 0x80) {  // nearly everything is
        text.remove_prefix(1);
        return first;
    }
    utf8proc_int32_t codePoint = -1;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                         static_cast<utf8proc_ssize_t>(text.size()), &codePoint);
    text.remove_prefix(length > 0 ? static_cast<std::size_t>(length) : 1);
    return length > 0 ? codePoint : -1;
}

void appendUtf8(std::string& text, std::int32_t codePoint) {
    utf8proc_uint8_t encoded[4];
    const auto length = utf8proc_encode_char(codePoint, encoded);
    text.append(reinterpret_cast<const char*>(encoded), static_cast<std::size_t>(length));
}

bool isAscii(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool isUtf8(std::string_view bytes) {
    if (isAscii(bytes)) return true;  // nearly everything is
    while (!bytes.empty())
        if (nextCodePoint(bytes) < 0) return false;
    return true;
}

std::string repairedUtf8(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        const std::string_view before = bytes;
        const bool valid = nextCodePoint(bytes) >= 0;
        text += valid ? before.substr(0, before.size() - bytes.size()) : replacement;
    }
    return text;
}

std::string oneLine(std::string_view text) {
    const bool isPlain = std::all_of(text.begin(), text.end(), isPrintableAscii);
    if (isPlain) return std::string(text);  // nearly everything is
    std::string line;
    line.reserve(text.size());
    while (!text.empty()) {
        const std::string_view before = text;
        const std::int32_t codePoint = nextCodePoint(text);
        if (codePoint < 0)
            line += replacement;
        else if (steersATerminal(codePoint))
            line += ' ';
        else
            line += before.substr(0, before.size() - text.size());
    }
    return line;
}

std::string excerpt(std::string_view text, std::size_t most) {
    if (text.size() <= most) return oneLine(text);
    constexpr std::size_t longestCharacter = 4;
    std::size_t end = most;
    while (end > 0 && end + longestCharacter > most && isContinuation(text[end])) --end;
    return oneLine(text.substr(0, end)) + "...";
}

std::string lowerCaseSlug(std::string_view text) {
    std::string slug;
    bool inWord = false;
    while (!text.empty()) {
        const std::int32_t codePoint = nextCodePoint(text);
        const SlugClass kind = slugClass(codePoint);
        // A mark belongs to what stands before it: to a letter, or to a separator.
        if (kind == SlugClass::separator) inWord = false;
        if (kind == SlugClass::separator || (kind == SlugClass::mark && !inWord)) continue;
        if (!inWord && !slug.empty()) slug += '-';
        inWord = true;
        appendUtf8(slug, utf8proc_tolower(codePoint));
    }
    return slug;
}

std::string lowerCaseAscii(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

std::string caseFolded(std::string_view text, Accents accents) {
    if (isAscii(text)) return lowerCaseAscii(text);  // all that the mapping below does to it
    constexpr int fold = UTF8PROC_STABLE | UTF8PROC_COMPAT | UTF8PROC_DECOMPOSE | UTF8PROC_CASEFOLD;
    const int options = accents == Accents::dropped ? fold | UTF8PROC_STRIPMARK : fold;
    utf8proc_uint8_t* mapped = nullptr;
    const auto length = utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                     static_cast<utf8proc_ssize_t>(text.size()), &mapped,
                                     static_cast<utf8proc_option_t>(options));
    const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(mapped, &std::free);
    if (length < 0) return std::string(text);
    return {reinterpret_cast<const char*>(mapped), static_cast<std::size_t>(length)};
}

std::string join(const std::vector<std::string>& pieces, std::string_view separator) {
    std::string joined;
    for (const std::string& piece : pieces) {
        if (&piece != &pieces.front()) joined += separator;
        joined += piece;
    }
    return joined;
}

std::string counted(std::size_t count, std::string_view one, std::string_view more) {
    return fmt::format("{} {}", count, count == 1 ? one : more);
}

std::string firstOf(const std::vector<std::string>& sentences, std::string_view separator) {
    if (sentences.size() <= mostShown) return join(sentences, separator);
    std::vector<std::string> first(sentences.begin(), sentences.begin() + mostShown);
    first.push_back(fmt::format("And {} more.", sentences.size() - mostShown));
    return join(first, separator);
}

std::string firstNames(const std::vector<std::string>& names) {
    std::vector<std::string> first;
    for (const std::string& name : names)
        if (first.size() < mostShown) first.push_back(excerpt(name));
    const std::string more = fmt::format(" and {} more", names.size() - first.size());
    return join(first, ", ") + (first.size() < names.size() ? more : "");
}

std::string fileUrl(std::string_view absolutePath) {
    constexpr char hex[] = "0123456789ABCDEF";
    // Characters that a path may hold as they stand; the platform's own file URLs leave these, too.
    constexpr std::string_view plain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~/!$&'()*+,:=@";
    std::string url = "file://";
    for (const char c : absolutePath) {
        if (plain.find(c) != std::string_view::npos) {
            url += c;
            continue;
        }
        url += '%';
        url += hex[static_cast<unsigned char>(c) >> 4];
        url += hex[static_cast<unsigned char>(c) & 15];
    }
    return url;
}

}  // namespace brell
