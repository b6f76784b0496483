#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>

#include "BrellCore/Support/Numbers.h"
#include "BrellCore/Support/PropertyListParts.h"
#include "BrellCore/Support/TimeStamp.h"

namespace brell {

namespace {

using plist::refuse;

constexpr std::string_view header =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";

// Seconds since 2001 of the first moments of the years 1 and 10000.
constexpr double yearOne = -63'114'076'800, yearTenThousand = 252'423'993'600;

// One group of four characters for up to three bytes.
std::array<char, 4> base64Group(std::string_view bytes) {
    constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::uint32_t group = 0;
    for (std::size_t i = 0; i < 3; ++i)
        group = group << 8 | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0u);
    std::array<char, 4> characters;
    for (std::size_t i = 0; i < 4; ++i)
        characters[i] = i <= bytes.size() ? digits[group >> (18 - 6 * i) & 63] : '=';
    return characters;
}

// What stands for a character that is markup; empty for any other.
std::string_view entityOf(char c) {
    switch (c) {
        case '&': return "&amp;";
        case '<': return "&lt;";
        case '>': return "&gt;";
        case '\r': return "&#13;";  // by the rules of XML a bare one may be read as a line feed
        default: return {};
    }
}

// Appends one value after the other; visited with what a PlistValue holds.
class XmlWriter {
public:
    void write(const PlistValue& value) {
        plist::checkLevel(++level_);
        budget_.take(1);
        std::visit(*this, value.payload);
        --level_;
    }

    void operator()(bool value) { line(value ? "<true/>" : "<false/>"); }
    void operator()(std::int64_t number) { element("integer", std::to_string(number)); }
    void operator()(double number) { element("real", shortestDecimal(number)); }
    void operator()(const std::string& text) { element("string", text); }
    void operator()(const PlistDate& date);
    void operator()(const PlistData& data);
    void operator()(const PlistArray& array);
    void operator()(const PlistDictionary& dictionary);
    void operator()(const PlistBigInteger& number) {
        refuse("the integer {} does not fit into 64 bits", excerpt(number.text));
    }
    void operator()(const PlistUid& uid) { refuse("the unique identifier {} has no XML form", uid.number); }

    std::string xml{header};

private:
    void indent(int extra) { xml.append(static_cast<std::size_t>(level_ - 1 + extra), '\t'); }
    void line(std::string_view markup, int extra = 0) {
        indent(extra);
        xml += markup;
        xml += '\n';
    }
    void element(std::string_view name, std::string_view contents, int extra = 0);
    void escaped(std::string_view contents);

    int level_ = 0;
    plist::ValueBudget budget_;
};

void XmlWriter::operator()(const PlistDate& date) {
    if (!(date.seconds >= yearOne && date.seconds < yearTenThousand))
        refuse("a date lies outside the years 1 to 9999");
    if (date.seconds != std::floor(date.seconds)) refuse("a date has a fraction of a second");
    const std::chrono::seconds since1970(static_cast<std::int64_t>(date.seconds) + plist::start2001);
    element("date", iso8601(TimeStamp(since1970)));
}

void XmlWriter::operator()(const PlistData& data) {
    line("<data>");
    const int columns = std::max(76 - 8 * (level_ - 1), 16);
    const auto bytesInALine = static_cast<std::size_t>(columns / 4 * 3);
    for (std::size_t at = 0; at < data.bytes.size(); at += 3) {
        if (at % bytesInALine == 0) indent(0);
        const auto group = base64Group(std::string_view(data.bytes).substr(at, 3));
        xml.append(group.data(), group.size());
        if ((at + 3) % bytesInALine == 0 || at + 3 >= data.bytes.size()) xml += '\n';
    }
    line("</data>");
}

void XmlWriter::operator()(const PlistArray& array) {
    if (array.empty()) return line("<array/>");
    line("<array>");
    for (const PlistValue& value : array) write(value);
    line("</array>");
}

void XmlWriter::operator()(const PlistDictionary& dictionary) {
    if (dictionary.entries.empty()) return line("<dict/>");
    line("<dict>");
    for (const auto* entry : plist::sortedUniqueKeys(dictionary)) {
        element("key", entry->key, 1);
        write(entry->value);
    }
    line("</dict>");
}

void XmlWriter::element(std::string_view name, std::string_view contents, int extra) {
    indent(extra);
    xml += '<';
    xml += name;
    xml += '>';
    escaped(contents);
    xml += "</";
    xml += name;
    xml += ">\n";
}

void XmlWriter::escaped(std::string_view contents) {
    if (!isXmlText(contents))
        refuse("the text \"{}\" holds something that is no character of XML text", excerpt(contents));
    const auto isMarkup = [](char c) { return !entityOf(c).empty(); };
    for (auto at = contents.begin();;) {
        const auto markup = std::find_if(at, contents.end(), isMarkup);
        xml.append(at, markup);
        if (markup == contents.end()) return;
        xml += entityOf(*markup);
        at = markup + 1;
    }
}

}  // namespace

std::string writeXmlPropertyList(const PlistValue& value) {
    XmlWriter writer;
    writer.write(value);
    return std::move(writer.xml) + "</plist>\n";
}

}  // namespace brell
