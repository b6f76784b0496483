#include "BrellCore/Catalog/Presets.h"

#include <gtest/gtest.h>

#include "BrellCore/Support/JsonWriter.h"
#include "Tests/Support/Testing.h"

namespace brell {

namespace {

using testing::Texts;
using testing::thrownBy;
using Ids = std::vector<std::string>;

const std::string importSummary = "Imported from a .corvanepreset file.";
const std::string nested = std::string(5000, '[') + std::string(5000, ']');

class PresetsTest : public ::testing::Test {
protected:
    const TweakCatalog catalog{"/Users/jo"};

    DecodedPreset decoded(std::string_view bytes) const { return PresetFile::decode(bytes, catalog); }

    // Nothing when the bytes are a preset after all; every other error fails the test.
    std::optional<PresetFileFailure> refusalOf(std::string_view bytes) const {
        return testing::failureOf<PresetFileError>([&] { decoded(bytes); });
    }
};

}  // namespace

TEST_F(PresetsTest, ShippedOnesAreApplicableAndCarryTheIdOfTheirName) {
    Ids ids;
    for (const Preset& preset : Presets::shipped()) {
        ids.push_back(preset.id);
        EXPECT_EQ(PresetFile::slug(preset.name), preset.id);
        EXPECT_EQ(Presets::validate(preset, catalog), (PresetValidation{preset.tweakIDs, {}, {}}));
    }
    EXPECT_EQ(ids, (Ids{"quiet-dock", "developer-finder", "fewer-animations", "calm-typing"}));
}

TEST_F(PresetsTest, ExportsTheSampleFileAndImportsItAgain) {
    const std::string bytes = testing::sample("Preset/quiet-dock.corvanepreset");
    const Preset& quietDock = Presets::shipped().front();

    EXPECT_EQ(PresetFile::encode(quietDock), bytes);
    EXPECT_EQ(decoded(bytes),
              (DecodedPreset{{"quiet-dock", "Quiet Dock", importSummary, quietDock.tweakIDs}, {}}));

    const std::size_t closingBrace = bytes.rfind('}');
    for (std::size_t length = 0; length <= closingBrace; ++length)
        EXPECT_EQ(refusalOf(bytes.substr(0, length)), PresetFileFailure(UnreadablePreset())) << length;
}

TEST_F(PresetsTest, AnyNameAndIdsSurviveTheFileUnlessTheyAreNotUtf8) {
    const Preset awkward{"", "\"\\/\n\u00C9t\u00E9 \U0001F600", "lost", {"dock.\t\"x\""}};
    EXPECT_EQ(decoded(PresetFile::encode(awkward)),
              (DecodedPreset{{"\u00E9t\u00E9", awkward.name, importSummary, {}}, awkward.tweakIDs}));

    EXPECT_TRUE(thrownBy<JsonWriteError>([] { PresetFile::encode({"", "\xC3", "", {}}); }));
}

TEST_F(PresetsTest, DecodingKeepsEachKnownIdOnceAndReportsTheOthersOnce) {
    EXPECT_EQ(decoded(R"({"tweaks": ["shot.jpg", "dock.foo", "dock.autohide", "shot.jpg", "", "dock.foo"],
                          "extra": {"name": 123456789012345678901234567890, "format": 7}, "name": "M\u00fcsli", "format": 1})"),
              (DecodedPreset{{"m\u00FCsli", "M\u00FCsli", importSummary, {"shot.jpg", "dock.autohide"}},
                             {"dock.foo", ""}}));
    EXPECT_EQ(decoded("\uFEFF"
                      R"( {"format":1,"name":"","tweaks":[]} )"),
              (DecodedPreset{{"preset", "", importSummary, {}}, {}}));
    std::string later = R"({"format": 1, "name": "A", "tweaks": [], "huge": -1e999, "deep": )" + nested;
    for (int i = 0; i < 1000; ++i) later += ",\"" + std::to_string(i) + "\": null";
    EXPECT_EQ(decoded(later + "}"), (DecodedPreset{{"a", "A", importSummary, {}}, {}}));
}

TEST_F(PresetsTest, ANameThatIsTooLongIsToldByItsBeginning) {
    std::string name;
    for (std::size_t i = 0; i < PresetFile::mostNameCharacters; ++i) name += "\u00E9";
    EXPECT_EQ(testing::messageOf([&] { PresetFile::checkName(name); }), "");
    const auto refusal = testing::failureOf<PresetFileError>([&] { PresetFile::checkName("<b>\n" + name); });
    ASSERT_TRUE(refusal);
    EXPECT_TRUE(describe(*refusal).starts_with("The name of the preset \"<b> \u00E9\u00E9"));
    EXPECT_TRUE(describe(*refusal).ends_with("...\" has more than 200 characters. Give it a shorter one."));
}

TEST_F(PresetsTest, AnotherFormatIsRefusedBeforeAnythingElseIsLookedAt) {
    for (const std::string& rest : std::vector<std::string>{
             "}", R"(, "name": 5, "tweaks": {"a": [null]}})", R"(, "big": [1e999]})",
             R"(, "name": 123456789012345678901234567890})", ", \"deep\": " + nested + "}"}) {
        EXPECT_EQ(refusalOf(R"({"format": 2)" + rest), PresetFileFailure(UnsupportedPresetFormat{2})) << rest;
        EXPECT_EQ(refusalOf(R"({"format": 0)" + rest), PresetFileFailure(UnsupportedPresetFormat{0})) << rest;
        EXPECT_EQ(refusalOf(R"({"format": -9223372036854775808)" + rest),
                  PresetFileFailure(UnsupportedPresetFormat{INT64_MIN}));
    }
    EXPECT_EQ(testing::messageOf([&] { decoded(R"({"format": 2})"); }),
              "This preset file uses format 2, which this version of Brell does not know. Update Brell to "
              "open it.");
}

TEST_F(PresetsTest, WhatIsNotAWholePresetIsUnreadable) {
    std::vector<Texts> files = testing::sampleRows("Preset/unreadable.txt");
    files.insert(files.end(), {{""}, {"{\"format\": 1, \"name\": \"\xC3(\", \"tweaks\": []}"}});
    for (const Texts& file : files)
        EXPECT_EQ(refusalOf(file[0]), PresetFileFailure(UnreadablePreset())) << file[0];
    EXPECT_EQ(describe(PresetFileFailure(UnreadablePreset())), "This is not a preset file Brell can read.");
}

}  // namespace brell
