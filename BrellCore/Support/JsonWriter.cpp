#include "BrellCore/Support/JsonWriter.h"

#include <array>
#include <cmath>

#include "BrellCore/Support/Numbers.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

// The characters that stand for themselves, by one look each: a journal is made of little else.
constexpr std::array<bool, 256> makePlain() {
    std::array<bool, 256> plain{};
    for (unsigned char c = ' '; isPrintableAscii(static_cast<char>(c)); ++c) plain[c] = c != '"' && c != '\\';
    return plain;
}
constexpr std::array<bool, 256> plainCharacters = makePlain();

bool isPlain(char c) {
    return plainCharacters[static_cast<unsigned char>(c)];
}

std::string escaped(std::int32_t codePoint) {
    constexpr char hex[] = "0123456789abcdef";
    std::string text = "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) text += hex[codePoint >> shift & 15];
    return text;
}

}  // namespace

JsonWriteError::~JsonWriteError() = default;

void JsonWriter::key(std::string_view name) {
    beforeValue();
    quoted(name);
    text_ += layout_ == Layout::pretty ? " : " : ":";
    afterKey_ = true;
}

void JsonWriter::string(std::string_view text) {
    beforeValue();
    quoted(text);
}

void JsonWriter::boolean(bool value) {
    raw(value ? "true" : "false");
}

void JsonWriter::integer(std::int64_t value) {
    raw(std::to_string(value));
}

void JsonWriter::real(double value) {
    if (!std::isfinite(value))
        throw JsonWriteError("the number " + shortestDecimal(value) + " can't be saved");
    raw(shortestDecimal(value));
}

void JsonWriter::raw(std::string_view json) {
    beforeValue();
    text_ += json;
}

void JsonWriter::open(char bracket) {
    beforeValue();
    text_ += bracket;
    ++depth_;
    empty_ = true;
}

void JsonWriter::close(char bracket) {
    --depth_;
    if (!empty_) newLine();
    text_ += bracket;
    empty_ = false;
}

// The comma and line break that part a value from the one before it; nothing right behind its key.
void JsonWriter::beforeValue() {
    if (afterKey_) {
        afterKey_ = false;
        return;
    }
    if (text_.empty()) return;
    if (!empty_) text_ += ',';
    newLine();
    empty_ = false;
}

void JsonWriter::newLine() {
    if (layout_ == Layout::compact) return;
    const std::size_t start = text_.size();
    text_.append(1 + static_cast<std::size_t>(depth_) * 2, ' ');
    text_[start] = '\n';
}

// Characters that could steer a terminal which shows the file are written as escapes.
void JsonWriter::quoted(std::string_view text) {
    text_ += '"';
    while (!text.empty()) {
        std::size_t run = 0;
        while (run < text.size() && isPlain(text[run])) ++run;
        text_.append(text, 0, run);
        text.remove_prefix(run);
        if (text.empty()) break;
        const std::string_view before = text;
        const std::int32_t codePoint = nextCodePoint(text);
        if (codePoint < 0) throw JsonWriteError("text that is not UTF-8 can't be saved");
        switch (codePoint) {
            case '"': text_ += "\\\""; break;
            case '\\': text_ += "\\\\"; break;
            case '\n': text_ += "\\n"; break;
            case '\r': text_ += "\\r"; break;
            case '\t': text_ += "\\t"; break;
            default:
                if (steersATerminal(codePoint))
                    text_ += escaped(codePoint);
                else
                    text_ += before.substr(0, before.size() - text.size());
        }
    }
    text_ += '"';
}

}  // namespace brell
