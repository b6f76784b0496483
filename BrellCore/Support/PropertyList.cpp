#include "BrellCore/Support/PropertyList.h"

#include <algorithm>

#include "BrellCore/Support/PropertyListParts.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

std::vector<const PlistEntry*> sortedByKey(const PlistDictionary& dictionary) {
    std::vector<const PlistEntry*> sorted;
    sorted.reserve(dictionary.entries.size());
    for (const PlistEntry& entry : dictionary.entries) sorted.push_back(&entry);
    // A text of our own writing is in order.
    if (!std::ranges::is_sorted(sorted, {}, &PlistEntry::key))
        std::ranges::sort(sorted, {}, &PlistEntry::key);
    return sorted;
}

}  // namespace

PlistError::~PlistError() = default;

std::string describe(const PlistFailure& failure) {
    return "The property list is refused: " + failure.reason + ".";
}

const PlistValue* PlistDictionary::find(std::string_view key) const {
    for (const auto& [name, value] : entries)
        if (name == key) return &value;
    return nullptr;
}

void PlistDictionary::set(std::string key, PlistValue value) {
    for (auto& [name, old] : entries)
        if (name == key) {
            old = std::move(value);
            return;
        }
    entries.emplace_back(std::move(key), std::move(value));
}

bool PlistDictionary::remove(std::string_view key) {
    return std::erase_if(entries, [&](const PlistEntry& entry) { return entry.key == key; }) > 0;
}

bool PlistDictionary::operator==(const PlistDictionary& other) const {
    const auto ours = sortedByKey(*this), theirs = sortedByKey(other);
    return std::equal(ours.begin(), ours.end(), theirs.begin(), theirs.end(),
                      [](const PlistEntry* one, const PlistEntry* another) { return *one == *another; });
}

PlistValue readPropertyList(std::string_view bytes) {
    if (bytes.empty()) plist::refuse("it is empty");
    if (bytes.starts_with("bplist")) return plist::readBinary(bytes);
    return plist::readXml(bytes);
}

bool isXmlText(std::string_view text) {
    return plist::firstNonXml(text) == std::string_view::npos;
}

namespace plist {

std::vector<const PlistEntry*> sortedUniqueKeys(const PlistDictionary& dictionary) {
    auto sorted = sortedByKey(dictionary);
    const auto twice = std::adjacent_find(
        sorted.begin(), sorted.end(),
        [](const PlistEntry* one, const PlistEntry* next) { return one->key == next->key; });
    if (twice != sorted.end()) refuse("the key \"{}\" stands twice in a dictionary", excerpt((*twice)->key));
    return sorted;
}

bool isXmlCharacter(std::int32_t codePoint) {
    if (codePoint < 0x20) return codePoint == '\t' || codePoint == '\n' || codePoint == '\r';
    return codePoint < 0xD800 || (codePoint >= 0xE000 && codePoint < 0xFFFE) ||
           (codePoint >= 0x10000 && codePoint <= 0x10FFFF);
}

std::size_t firstNonXml(std::string_view text) {
    constexpr auto isPlain = [](char c) { return isPrintableAscii(c) || c == '\t' || c == '\n'; };
    for (std::string_view rest = text;;) {
        const auto look = std::find_if_not(rest.begin(), rest.end(), isPlain);  // nearly everything is
        if (look == rest.end()) return std::string_view::npos;
        rest.remove_prefix(static_cast<std::size_t>(look - rest.begin()));
        const std::size_t at = text.size() - rest.size();
        const std::int32_t codePoint = nextCodePoint(rest);
        if (!isXmlCharacter(codePoint)) return at;
    }
}

}  // namespace plist

}  // namespace brell
