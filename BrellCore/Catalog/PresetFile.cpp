#include <fmt/format.h>
#include <simdjson.h>

#include <optional>
#include <set>

#include "BrellCore/Catalog/Presets.h"
#include "BrellCore/Support/JsonWriter.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

constexpr std::string_view importSummary = "Imported from a .corvanepreset file.";

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
};

PresetFileError unreadable() {
    return PresetFileError(UnreadablePreset());
}

// The value as a T and nothing that would have to be converted first.
template <class T>
T as(simdjson::dom::element value) {
    T typed;
    if (value.get(typed) != simdjson::SUCCESS) throw unreadable();
    return typed;
}

// The value of a key that must be there, and only once: of two, nobody can say which one was meant.
simdjson::dom::element member(simdjson::dom::object object, std::string_view key) {
    std::optional<simdjson::dom::element> found;
    for (const auto field : object) {
        if (field.key != key) continue;
        if (found) throw unreadable();
        found = field.value;
    }
    if (!found) throw unreadable();
    return *found;
}

DecodedPreset decodeFormat1(simdjson::dom::object file, const TweakCatalog& catalog) {
    const std::string name(as<std::string_view>(member(file, "name")));
    DecodedPreset decoded{.preset = {.id = PresetFile::slug(name),
                                     .name = name,
                                     .summary = std::string(importSummary),
                                     .tweakIDs = {}},
                          .unknown = {}};
    std::set<std::string_view> seen;
    for (const auto element : as<simdjson::dom::array>(member(file, "tweaks"))) {
        const auto id = as<std::string_view>(element);
        if (!seen.insert(id).second) continue;
        (catalog.tweak(id) ? decoded.preset.tweakIDs : decoded.unknown).emplace_back(id);
    }
    return decoded;
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
    // The whole file is checked before anything is taken from it: its UTF-8, and what stands behind the
    // object.
    simdjson::dom::parser parser;
    simdjson::dom::object file;
    if (parser.parse(std::string(bytes)).get(file) != simdjson::SUCCESS) throw unreadable();

    // The format before all else, so that a newer file of another shape counts as newer and not as broken.
    const auto fileFormat = as<std::int64_t>(member(file, "format"));
    if (fileFormat != format) throw PresetFileError(UnsupportedPresetFormat{fileFormat});
    return decodeFormat1(file, catalog);
}

std::string slug(std::string_view name) {
    const std::string words = lowerCaseSlug(name);
    return words.empty() ? "preset" : words;
}

}  // namespace PresetFile

}  // namespace brell
