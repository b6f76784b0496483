// UTF-8 text: checking it, comparing it, and making it fit for one line.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace brell {

inline constexpr std::string_view byteOrderMark = "\uFEFF";

// Cuts one code point from the front of a text that is not empty, and gives it; or cuts one byte and gives -1
// when no whole UTF-8 sequence stands there.
std::int32_t nextCodePoint(std::string_view& text);

void appendUtf8(std::string& text, std::int32_t codePoint);  // a valid one

bool isAscii(std::string_view bytes);
bool isUtf8(std::string_view bytes);

// The same text with every invalid sequence replaced by U+FFFD.
std::string repairedUtf8(std::string_view bytes);

constexpr bool isPrintableAscii(char c) {
    return c >= 0x20 && c < 0x7F;
}

// True when the character does more to a terminal, or to a line, than stand in it: controls, line and
// paragraph separators, marks that turn the direction of the text, blanks without a width. All lie below
// U+10000.
constexpr bool steersATerminal(std::int32_t codePoint) {
    return codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0) || codePoint == 0x061C ||
           codePoint == 0x200B || codePoint == 0x200E || codePoint == 0x200F ||
           (codePoint >= 0x2028 && codePoint <= 0x202E) || (codePoint >= 0x2060 && codePoint <= 0x206F) ||
           codePoint == 0xFEFF;
}

// The text on one line, safe for a terminal, a comment or a table cell: each character that steers one
// becomes a blank. Bytes that are not UTF-8 become U+FFFD.
std::string oneLine(std::string_view text);

// Longer texts from outside are cut before they are shown: to lay out a long line takes too long.
inline constexpr std::size_t mostOfAName = 200, mostOfASentence = 1200;  // bytes; a path has up to 1024

// A piece of outside text to be shown: on one line, and not longer than so many bytes but for "...".
std::string excerpt(std::string_view text, std::size_t most = mostOfAName);

// Lower-case letters of any script and digits, everything else a separator: pieces joined with "-". A letter
// that is written as a base and combining marks stays whole. Empty when no letter or digit is in the text.
std::string lowerCaseSlug(std::string_view text);

std::string lowerCaseAscii(std::string_view text);

enum class Accents { kept, dropped };

// UTF-8 text for comparing: without letter case, in Unicode's compatibility decomposition. Other bytes stay
// as they are.
std::string caseFolded(std::string_view text, Accents accents);

std::string join(const std::vector<std::string>& pieces, std::string_view separator);

// "1 change", "3 changes".
std::string counted(std::size_t count, std::string_view one, std::string_view more);

// The first few of these sentences, joined, and how many more there are: "And 5 more."
std::string firstOf(const std::vector<std::string>& sentences, std::string_view separator);
// The first few of these names, as excerpts, and how many more there are: "a, b and 5 more".
std::string firstNames(const std::vector<std::string>& names);

inline bool isWhite(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// Without white space (blanks, tabs, line ends) at either end. Inline: a dump has a hundred thousand lines,
// most of them with a wide margin.
inline std::string_view stripped(std::string_view text) {
    while (!text.empty() && isWhite(text.front())) text.remove_prefix(1);
    while (!text.empty() && isWhite(text.back())) text.remove_suffix(1);
    return text;
}

// The file URL of an absolute path, with everything outside the unreserved characters and "/"
// percent-encoded: /Users/jo ann gives file:///Users/jo%20ann.
std::string fileUrl(std::string_view absolutePath);

}  // namespace brell
