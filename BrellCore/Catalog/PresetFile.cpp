#include <fmt/format.h>
#include <simdjson.h>

#include <array>
#include <exception>
#include <set>

#include "BrellCore/Catalog/Presets.h"
#include "BrellCore/Support/JsonReader.h"
#include "BrellCore/Support/JsonWriter.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

constexpr std::string_view importSummary = "Imported from a .corvanepreset file.";
constexpr std::array<KnownKey, 3> fileKeys{{{"format"}, {"name"}, {"tweaks"}}};

struct Description {
    std::string operator()(const UnsupportedPresetFormat& failure) const {
        return fmt::format(
            "This preset file uses format {}, which this version of Brell does not know. Update Brell to "
            "open it.",
            failure.format);
    }
    std::string operator()(const UnreadablePreset&) const {
        return "This is not a preset file Brell can read.";
    }
    std::string operator()(const PresetNameTooLong& failure) const {
        return fmt::format(
            "The name of the preset \"{}\" has more than {} characters. Give it a shorter one.",
            failure.beginning, PresetFile::mostNameCharacters);
    }
};

PresetFileError unreadable() {
    return PresetFileError(UnreadablePreset());
}

DecodedPreset presetOf(const std::string& name, const std::vector<std::string>& ids,
                       const TweakCatalog& catalog) {
    DecodedPreset decoded{.preset = {.id = PresetFile::slug(name),
                                     .name = name,
                                     .summary = std::string(importSummary),
                                     .tweakIDs = {}},
                          .unknown = {}};
    std::set<std::string_view> seen;
    for (const std::string& id : ids)
        if (seen.insert(id).second)
            (catalog.tweak(id) ? decoded.preset.tweakIDs : decoded.unknown).push_back(id);
    return decoded;
}

DecodedPreset decodeFormat1(const std::string& padded, const TweakCatalog& catalog) try {
    std::string name;
    std::vector<std::string> ids;
    KnownKeys known(fileKeys);
    simdjson::ondemand::parser parser;
    simdjson::ondemand::document document = startReading(parser, padded);
    for (simdjson::ondemand::field field : document.get_object()) {
        const KnownKey* key = known.met(field);
        if (!key) checkWellFormed(field.value());
        if (key && key->name == "name") name = field.value().get_string().value();
        if (key && key->name == "tweaks")
            for (auto id : field.value().get_array()) ids.emplace_back(id.get_string().value());
    }
    known.checkAllMet();
    return presetOf(name, ids, catalog);
} catch (const std::exception&) {
    throw unreadable();
}

}  // namespace

std::string describe(const PresetFileFailure& failure) {
    return std::visit(Description(), failure);
}

PresetFileError::~PresetFileError() = default;

namespace PresetFile {

std::string encode(const Preset& preset) {
    JsonWriter json(JsonWriter::Layout::pretty);
    json.beginObject();
    json.key("format");
    json.integer(format);
    json.key("name");
    json.string(preset.name);
    json.key("tweaks");
    json.beginArray();
    for (const std::string& id : preset.tweakIDs) json.string(id);
    json.endArray();
    json.endObject();
    return json.take() + '\n';
}

DecodedPreset decode(std::string_view bytes, const TweakCatalog& catalog) {
    if (bytes.starts_with(byteOrderMark)) bytes.remove_prefix(byteOrderMark.size());
    std::string text(bytes);
    text.reserve(text.size() + simdjson::SIMDJSON_PADDING);
    // Before all else, so that a newer file of another shape counts as newer and not as broken.
    const auto fileFormat = formatOf(text);
    if (!fileFormat) throw unreadable();
    if (*fileFormat != format) throw PresetFileError(UnsupportedPresetFormat{*fileFormat});
    return decodeFormat1(text, catalog);
}

void checkName(std::string_view name) {
    std::string_view rest = name;
    for (std::size_t i = 0; i < mostNameCharacters && !rest.empty(); ++i) nextCodePoint(rest);
    if (!rest.empty()) throw PresetFileError(PresetNameTooLong{excerpt(name)});
}

std::string slug(std::string_view name) {
    const std::string words = lowerCaseSlug(name);
    return words.empty() ? "preset" : words;
}

}  // namespace PresetFile

}  // namespace brell
