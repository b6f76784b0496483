// Named lists of tweaks that are applied in one step: four built in, others read from preset files.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Support/Failure.h"

namespace brell {

struct Preset {
    std::string id;  // lower-case words joined with "-"
    std::string name;
    std::string summary;
    std::vector<std::string> tweakIDs;
    bool operator==(const Preset&) const = default;
};

struct PresetValidation {
    std::vector<std::string> valid;  // known and not experimental: the ones to apply
    std::vector<std::string> unknown;
    std::vector<std::string> experimental;  // known, but never applied through a preset
    bool operator==(const PresetValidation&) const = default;
};

namespace Presets {
const std::vector<Preset>& shipped();
// Each list in the preset's order.
PresetValidation validate(const Preset& preset, const TweakCatalog& catalog);
}  // namespace Presets

struct UnsupportedPresetFormat {
    std::int64_t format;
    bool operator==(const UnsupportedPresetFormat&) const = default;
};
struct UnreadablePreset {
    bool operator==(const UnreadablePreset&) const = default;
};
struct PresetNameTooLong {
    std::string beginning;
    bool operator==(const PresetNameTooLong&) const = default;
};
using PresetFileFailure = std::variant<UnsupportedPresetFormat, UnreadablePreset, PresetNameTooLong>;
std::string describe(const PresetFileFailure& failure);

class PresetFileError final : public FailureError<PresetFileFailure> {
public:
    using FailureError::FailureError;
    ~PresetFileError() override;
};

struct DecodedPreset {
    Preset preset;                     // the known ids, each once
    std::vector<std::string> unknown;  // ids the catalog does not have, each once
    bool operator==(const DecodedPreset&) const = default;
};

// The ".corvanepreset" file: UTF-8 JSON.
namespace PresetFile {
inline constexpr std::int64_t format = 1;
inline constexpr std::string_view extension = ".corvanepreset";

// The file's bytes. Raises JsonWriteError when the name or an id is not UTF-8.
std::string encode(const Preset& preset);
// Any name is taken, and every key that is not known. Raises PresetFileError; changes nothing by itself.
DecodedPreset decode(std::string_view bytes, const TweakCatalog& catalog);
// Raises PresetFileError for a name that would be dear to show: to be asked before a preset is let in or out.
inline constexpr std::size_t mostNameCharacters = 200;
void checkName(std::string_view name);
// The id of an imported preset and its proposed file name: "Quiet Dock!" gives "quiet-dock"; "preset" when
// nothing is left.
std::string slug(std::string_view name);
}  // namespace PresetFile

}  // namespace brell
