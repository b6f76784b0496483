// Reads the XML form. The parser underneath only finds elements and text; entities are decoded and everything
// a property list can't contain is refused here, because the parser is lenient about both.
#include <algorithm>
#include <pugixml.hpp>

#include "BrellCore/Support/PropertyListParts.h"
#include "BrellCore/Support/Text.h"
#include "BrellCore/Support/TimeStamp.h"

namespace brell::plist {

namespace {

// parse_fragment: without it the parser drops text outside the root silently. No parse_escapes: it would
// leave undefined entities as they stand. No parse_eol: the system writes a carriage return as it is, and
// reads it as one.
constexpr unsigned parseFlags = pugi::parse_cdata | pugi::parse_ws_pcdata | pugi::parse_declaration |
                                pugi::parse_doctype | pugi::parse_fragment;

bool isBlank(std::string_view text) {
    return withoutLeadingBlanks(text).empty();
}

// Turns the elements of one parsed document into values.
class XmlWalk {
public:
    explicit XmlWalk(std::size_t offset) : offset_(offset) {}

    PlistValue plist(const pugi::xml_document& document);

private:
    using Reader = PlistValue (XmlWalk::*)(pugi::xml_node, int);
    struct Kind {
        std::string_view element;
        Reader read;
    };

    PlistValue value(pugi::xml_node element, int level);
    PlistValue dictionary(pugi::xml_node element, int level);
    PlistValue array(pugi::xml_node element, int level);
    PlistValue string(pugi::xml_node element, int) { return {text(element)}; }
    PlistValue yes(pugi::xml_node element, int) { return boolean(element, true); }
    PlistValue no(pugi::xml_node element, int) { return boolean(element, false); }
    PlistValue boolean(pugi::xml_node element, bool value);
    PlistValue integer(pugi::xml_node element, int);
    PlistValue real(pugi::xml_node element, int);
    PlistValue date(pugi::xml_node element, int);
    PlistValue data(pugi::xml_node element, int);

    void checkDeclaration(pugi::xml_node declaration);
    pugi::xml_node rootOf(const pugi::xml_document& document);
    pugi::xml_node elementFrom(pugi::xml_node node);
    void checkBlank(pugi::xml_node node);
    std::string text(pugi::xml_node element);
    std::size_t placeOf(pugi::xml_node node) const;
    [[noreturn]] void refuseText(pugi::xml_node element, std::string_view text);

    std::size_t offset_;  // of the parsed text in the file
    ValueBudget budget_;
};

PlistValue XmlWalk::plist(const pugi::xml_document& document) {
    const pugi::xml_node root = rootOf(document);
    const pugi::xml_node element = elementFrom(root.first_child());
    if (!element) refuse("its plist element is empty");
    PlistValue result = value(element, 1);
    if (const auto second = elementFrom(element.next_sibling()))
        refuse("a second value stands in the plist element at byte {}", placeOf(second));
    return result;
}

pugi::xml_node XmlWalk::rootOf(const pugi::xml_document& document) {
    pugi::xml_node root;
    for (pugi::xml_node node = document.first_child(); node; node = node.next_sibling()) {
        if (node.type() == pugi::node_declaration) {
            checkDeclaration(node);
        } else if (node.type() == pugi::node_doctype) {
            if (root) refuse("a document type stands behind the plist element");
        } else if (node.type() == pugi::node_element) {
            if (root || std::string_view(node.name()) != "plist")
                refuse("<{}> at byte {} is not its one plist element", excerpt(node.name()), placeOf(node));
            root = node;
        } else {
            checkBlank(node);
        }
    }
    if (!root) refuse("it has no plist element");
    return root;
}

void XmlWalk::checkDeclaration(pugi::xml_node declaration) {
    constexpr std::size_t nameBegin = 2;  // behind "<?"
    if (placeOf(declaration) > offset_ + nameBegin)
        refuse("an XML declaration at byte {} is not the first thing in it", placeOf(declaration));
    const std::string encoding = lowerCaseAscii(declaration.attribute("encoding").as_string("utf-8"));
    if (encoding != "utf-8") refuse("its text is declared as {}, and only UTF-8 is read", excerpt(encoding));
}

PlistValue XmlWalk::value(pugi::xml_node element, int level) {
    static constexpr Kind kinds[] = {
        {"string", &XmlWalk::string}, {"dict", &XmlWalk::dictionary}, {"true", &XmlWalk::yes},
        {"false", &XmlWalk::no},      {"integer", &XmlWalk::integer}, {"array", &XmlWalk::array},
        {"real", &XmlWalk::real},     {"date", &XmlWalk::date},       {"data", &XmlWalk::data}};
    checkLevel(level);
    budget_.take(1);
    const std::string_view name = element.name();
    for (const Kind& kind : kinds)
        if (name == kind.element) return (this->*kind.read)(element, level);
    refuse("<{}> at byte {} is no value", excerpt(name), placeOf(element));
}

PlistValue XmlWalk::dictionary(pugi::xml_node element, int level) {
    PlistDictionary result;
    pugi::xml_node key = elementFrom(element.first_child());
    while (key) {
        if (std::string_view(key.name()) != "key")
            refuse("the value <{}> at byte {} has no key", excerpt(key.name()), placeOf(key));
        const pugi::xml_node held = elementFrom(key.next_sibling());
        if (!held || std::string_view(held.name()) == "key")
            refuse("the key \"{}\" at byte {} has no value", excerpt(text(key)), placeOf(key));
        result.entries.emplace_back(text(key), value(held, level + 1));
        key = elementFrom(held.next_sibling());
    }
    sortedUniqueKeys(result);
    return {std::move(result)};
}

PlistValue XmlWalk::array(pugi::xml_node element, int level) {
    PlistArray result;
    for (auto held = elementFrom(element.first_child()); held; held = elementFrom(held.next_sibling()))
        result.push_back(value(held, level + 1));
    return {std::move(result)};
}

PlistValue XmlWalk::boolean(pugi::xml_node element, bool value) {
    if (element.first_child()) refuse("<{}> at byte {} is not empty", element.name(), placeOf(element));
    return {value};
}

PlistValue XmlWalk::integer(pugi::xml_node element, int) {
    const std::string written = text(element);
    if (auto number = parsePlistInteger(written)) return *std::move(number);
    refuseText(element, written);
}

PlistValue XmlWalk::real(pugi::xml_node element, int) {
    const std::string written = text(element);
    if (const auto number = parsePlistReal(written)) return {*number};
    refuseText(element, written);
}

PlistValue XmlWalk::date(pugi::xml_node element, int) {
    const std::string written = text(element);
    if (const auto time = parseIso8601(written))
        return {PlistDate{static_cast<double>(time->time_since_epoch().count() - start2001)}};
    refuseText(element, written);
}

PlistValue XmlWalk::data(pugi::xml_node element, int) {
    const std::string written = text(element);
    if (auto bytes = decodedBase64(written)) return {PlistData{*std::move(bytes)}};
    refuseText(element, written);
}

// This node or the first element behind it; only blanks may stand between.
pugi::xml_node XmlWalk::elementFrom(pugi::xml_node node) {
    for (; node; node = node.next_sibling()) {
        if (node.type() == pugi::node_element) return node;
        checkBlank(node);
    }
    return node;
}

void XmlWalk::checkBlank(pugi::xml_node node) {
    if (node.type() == pugi::node_pcdata && isBlank(node.value())) return;
    refuse("\"{}\" at byte {} stands between the elements", excerpt(stripped(node.value())), placeOf(node));
}

std::string XmlWalk::text(pugi::xml_node element) {
    std::string text;
    for (pugi::xml_node node = element.first_child(); node; node = node.next_sibling()) {
        if (node.type() == pugi::node_pcdata)
            appendDecoded(text, node.value());
        else if (node.type() == pugi::node_cdata)
            text += node.value();
        else
            refuse("<{}> at byte {} holds more than text", element.name(), placeOf(element));
    }
    return text;
}

std::size_t XmlWalk::placeOf(pugi::xml_node node) const {
    return offset_ + static_cast<std::size_t>(std::max<std::ptrdiff_t>(node.offset_debug(), 0));
}

void XmlWalk::refuseText(pugi::xml_node element, std::string_view text) {
    refuse("\"{}\" at byte {} is no {}", excerpt(text), placeOf(element), element.name());
}

bool isWideText(std::string_view bytes) {
    return bytes.starts_with("\xFE\xFF") || bytes.starts_with("\xFF\xFE") ||
           bytes.substr(0, 4).find('\0') != std::string_view::npos;
}

}  // namespace

PlistValue readXml(std::string_view bytes) {
    if (isWideText(bytes)) refuse("it is UTF-16 or UTF-32 text, and only UTF-8 is read");
    std::string_view xml = bytes;
    if (xml.starts_with(byteOrderMark)) xml.remove_prefix(byteOrderMark.size());
    xml = withoutLeadingBlanks(xml);
    if (!xml.starts_with('<')) refuse("it is neither an XML nor a binary property list");
    const std::size_t offset = bytes.size() - xml.size();
    if (const std::size_t bad = firstNonXml(xml); bad != std::string_view::npos)
        refuse("it holds something at byte {} that is no character of XML text", offset + bad);

    pugi::xml_document document;
    const auto result = document.load_buffer(xml.data(), xml.size(), parseFlags, pugi::encoding_utf8);
    if (!result)
        refuse("its XML is not well-formed at byte {} ({})", offset + static_cast<std::size_t>(result.offset),
               result.description());
    return XmlWalk(offset).plist(document);
}

}  // namespace brell::plist
