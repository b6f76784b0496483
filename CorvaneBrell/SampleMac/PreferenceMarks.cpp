#include "CorvaneBrell/SampleMac/PreferenceMarks.h"

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "BrellCore/Support/DurableFile.h"
#include "BrellCore/Support/FileContents.h"
#include "BrellCore/Support/PropertyList.h"

namespace fs = std::filesystem;

namespace brell {

namespace {

constexpr std::size_t mostBytes = 1 << 20;
constexpr std::string_view byHostField = "ByHost";
constexpr std::string_view forcedField = "Forced";

fs::path fileIn(const fs::path& root) {
    return root / "private/var/db/preference-marks.plist";
}

// As PrefKey renders them; no domain has a space in it.
PlistValue written(const std::vector<PrefKey>& keys) {
    PlistArray texts;
    for (const PrefKey& key : keys) texts.push_back({key.rendered()});
    return {std::move(texts)};
}

PrefKey keyFrom(const PlistValue& value) {
    const auto* text = value.as<std::string>();
    const std::size_t space = text ? text->find(' ') : std::string::npos;
    if (space == std::string::npos) throw PlistError({"a mark is not a domain and a key"});
    return {text->substr(0, space), text->substr(space + 1)};
}

std::vector<PrefKey> keysFrom(const PlistValue& root, std::string_view field) {
    const auto* fields = root.as<PlistDictionary>();
    const PlistValue* found = fields ? fields->find(field) : nullptr;
    const auto* texts = found ? found->as<PlistArray>() : nullptr;
    if (!texts) throw PlistError({"it has no list " + std::string(field)});
    std::vector<PrefKey> keys;
    for (const PlistValue& text : *texts) keys.push_back(keyFrom(text));
    return keys;
}

}  // namespace

std::optional<PreferenceMarks> readPreferenceMarks(const fs::path& root) try {
    const auto contents = readFile(fileIn(root), mostBytes);
    if (!contents) return std::nullopt;
    const PlistValue value = readPropertyList(contents->bytes);
    return PreferenceMarks{keysFrom(value, byHostField), keysFrom(value, forcedField)};
} catch (const PlistError& error) {
    throw std::runtime_error("The file " + fileIn(root).string() +
                             " could not be read: " + error.failure().reason + ".");
}

void writePreferenceMarks(const fs::path& root, const PreferenceMarks& marks) {
    const PlistDictionary fields{{{std::string(byHostField), written(marks.byHost)},
                                  {std::string(forcedField), written(marks.forced)}}};
    replaceFile(fileIn(root), writeXmlPropertyList({fields}), Durability::readersOnly);
}

}  // namespace brell
