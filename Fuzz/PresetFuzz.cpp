// Any bytes either are refused with a sentence or are a preset; and a preset written again reads back the
// same.
#include <algorithm>
#include <cstdint>
#include <optional>
#include <set>

#include "BrellCore/Catalog/Presets.h"
#include "Fuzz/Checks.h"

namespace {

using namespace brell;
using namespace brell::fuzz;

const TweakCatalog catalog("/Users/jo");

std::optional<DecodedPreset> decoded(std::string_view bytes) {
    try {
        return PresetFile::decode(bytes, catalog);
    } catch (const PresetFileError& error) {
        const std::string_view sentence = error.what();
        require(sentence.ends_with('.') && isReason(sentence.substr(0, sentence.size() - 1)));
        return std::nullopt;
    }
}

void checkIds(const std::vector<std::string>& ids, bool known) {
    require(std::set(ids.begin(), ids.end()).size() == ids.size());
    for (const std::string& id : ids) require((catalog.tweak(id) != nullptr) == known);
}

// It becomes a file's name.
void checkSlug(const std::string& slug) {
    require(!slug.empty() && isUtf8(slug) && oneLine(slug) == slug && PresetFile::slug(slug) == slug);
    require(slug.find_first_of("/:. ") == std::string::npos);
}

void checkWrittenAgain(const DecodedPreset& decodedPreset) {
    Preset all = decodedPreset.preset;
    all.tweakIDs.insert(all.tweakIDs.end(), decodedPreset.unknown.begin(), decodedPreset.unknown.end());
    require(decoded(PresetFile::encode(all)) == decodedPreset);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto preset = decoded({reinterpret_cast<const char*>(data), size});
    if (!preset) return 0;
    checkIds(preset->preset.tweakIDs, true);
    checkIds(preset->unknown, false);
    checkSlug(preset->preset.id);
    checkWrittenAgain(*preset);
    return 0;
}
