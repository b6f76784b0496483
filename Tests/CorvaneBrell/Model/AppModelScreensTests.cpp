// Rows that can't be changed, files that are saved.

#include <sys/stat.h>

#include "CorvaneBrell/Model/TweakRowState.h"
#include "CorvaneBrell/SampleMac/PreferenceMarks.h"
#include "Tests/CorvaneBrell/Model/AppModelFixture.h"

namespace brell::testing {

TEST_F(AppModelTest, ARowThatCannotBeChangedSaysWhy) {
    writePreferenceMarks(sample.systemRoot(),
                         {{{std::string(globalDomain), "ApplePressAndHoldEnabled"}}, {}});
    setContents(sample.preferences() / "com.apple.dock.plist", "damaged");
    open();
    const auto row = [&](const char* id) { return tweakRowState(*model, *model->catalog().tweak(id)); };
    EXPECT_FALSE(row("kb.hold_to_repeat").canChange);
    EXPECT_EQ(row("kb.hold_to_repeat").reason,
              "ApplePressAndHoldEnabled has a by-host value; Brell does not change it here.");
    EXPECT_FALSE(row("dock.autohide").canChange);
    EXPECT_EQ(row("dock.autohide").reason, state().statusErrors.at("dock.autohide"));
    EXPECT_TRUE(row("finder.show_hidden").canChange);
}

TEST_F(AppModelTest, ReportScriptAndPresetAreSavedWhereAskedOrTheReasonIsSaid) {
    const Preset& shipped = Presets::shipped().front();
    const auto inFolder = [&](const char* name) { return folder.path / name; };
    open();
    apply({"dock.autohide"});
    const mode_t before = ::umask(0);
    model->saveRestoreScript(inFolder("saved.sh"));
    model->saveReport(inFolder("saved.md"));
    EXPECT_TRUE(state().fileActivity) << "what takes long says what it is";
    settled()->exportPreset(shipped, inFolder("saved.corvanepreset"));
    ::umask(before);
    for (const char* name : {"saved.sh", "saved.md", "saved.corvanepreset"})
        EXPECT_EQ(fs::status(inFolder(name)).permissions(), fs::perms(0644)) << name;
    std::string script;
    settled()->makeRestoreScript([&](const std::string& made) { script = made; });
    const auto behindTheDate = [](const std::string& text) { return text.substr(text.find("\n# Run it")); };
    EXPECT_EQ(behindTheDate(contentsOf(inFolder("saved.sh"))), behindTheDate(script));
    EXPECT_NE(contentsOf(inFolder("saved.md")).find("Hide the Dock automatically"), std::string::npos);
    EXPECT_EQ(contentsOf(inFolder("saved.corvanepreset")), PresetFile::encode(shipped));
    EXPECT_EQ(error(), "");

    const Preset endless{"", std::string(100'000, 'x'), "", {}};
    settled()->exportPreset(endless, inFolder("endless.corvanepreset"));
    EXPECT_EQ(error(), messageOf([&] { PresetFile::checkName(endless.name); }));
    EXPECT_FALSE(fs::exists(inFolder("endless.corvanepreset")));
    settled()->saveReport(sample.systemRoot());
    EXPECT_NE(error(), "") << "the reason is the lane's";
    options.dryRun = true;
    open();
    settled()->saveReport(inFolder("dry.md"));
    EXPECT_EQ(error(), "There is no report to save. " + model->whyNothingReal().value());
    EXPECT_FALSE(fs::exists(inFolder("dry.md")));
}

}  // namespace brell::testing
