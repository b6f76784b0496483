// Volumes, relaunches, presets and the other pages.

#include <sys/stat.h>

#include "CorvaneBrell/Model/TweakRowState.h"
#include "CorvaneBrell/SampleMac/PreferenceMarks.h"
#include "Tests/CorvaneBrell/Model/AppModelFixture.h"

namespace fs = std::filesystem;

namespace brell::testing {

TEST_F(AppModelTest, AnUpdateOfMacOSIsNoticedByTheVersionThatWasKept) {
    EXPECT_FALSE(open().state().macOSUpdate) << "it never ran before";
    model->keepMacOS();
    EXPECT_FALSE(open().state().macOSUpdate);
    model->ownPreferences().keepMacOS({99, 0, 0});
    EXPECT_FALSE(open().state().macOSUpdate) << "an older one holds what it held";
    model->ownPreferences().keepMacOS({15, 7, 0});
    EXPECT_EQ(open().state().macOSUpdate, (MacOSUpdate{{15, 7, 0}, SampleMac::osVersion}));
    model->dismissUpdate();
    EXPECT_FALSE(state().macOSUpdate);
}

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

TEST_F(AppModelTest, VolumesAndReviewedDatesAreShown) {
    open();
    settled()->refreshShown();
    EXPECT_TRUE(state().volumes.empty() && !state().loginItemsLoaded) << "of other pages";
    settled()->loadVolumes();
    const std::size_t before = state().volumes.size();
    fs::create_directory(sample.systemRoot() / "Volumes" / "Stick");
    settled()->loadVolumes();
    EXPECT_EQ(state().volumes.size(), before + 1);

    model->markReviewed("camera");
    EXPECT_EQ(state().reviewedTick, 1);
    EXPECT_TRUE(open().reviewedDate("camera")) << "kept for the next launch";
    EXPECT_FALSE(model->reviewedDate("microphone"));
}

TEST_F(AppModelTest, ARelaunchWaitsAcrossLaunchesAndAStubbornAppDoesNotHoldUpTheOther) {
    const std::set onlyTheDock{EffectClass::dockRelaunch};
    open();
    apply({"dock.autohide", "finder.show_hidden"});
    applications.setBehaviour("com.apple.dock", {std::nullopt, std::chrono::milliseconds(0)});
    applications.setBehaviour("com.apple.finder", {std::chrono::seconds(2), std::chrono::seconds(1)});
    open();
    EXPECT_EQ(waiting(), (std::set{EffectClass::dockRelaunch, EffectClass::finderRelaunch}));

    model->askRelaunch();
    model->confirmRelaunch();
    loop.advance(std::chrono::seconds(30));
    EXPECT_EQ(state().relaunchReport,
              (RelaunchReport{"The Dock did not quit within 5 seconds. Brell never forces a quit; try again "
                              "later or log out and back in. Finder relaunched.",
                              false}));
    EXPECT_EQ(waiting(), onlyTheDock);
    model->askRelaunch();
    EXPECT_TRUE(state().relaunchRequest) << "it can be tried again";
    model->cancelRelaunch();
    applications.endAll("com.apple.dock");
    settled()->refreshShown();
    EXPECT_EQ(waiting(), onlyTheDock);
    applications.launchAnother("com.apple.dock");
    settled()->refreshShown();
    EXPECT_TRUE(waiting().empty()) << "it was started anew in another way";
    EXPECT_FALSE(state().relaunchReport) << "else it would be told again after the next change";
    open();
    EXPECT_TRUE(waiting().empty());
}

TEST_F(AppModelTest, APresetThatCannotBeReadOrWrittenIsNamed) {
    const fs::path file = folder.path / "mine.corvanepreset";
    setContents(file, "{}");
    open();
    settled()->importPreset(file);
    const std::string named = "The preset " + file.string() + " could not be imported. ";
    EXPECT_EQ(error(), named + "This is not a preset file Brell can read.");
    const Preset endless{"", std::string(100'000, 'x'), "", {}};
    const std::string refusal = messageOf([&] { PresetFile::checkName(endless.name); });
    setContents(file, PresetFile::encode(endless));
    settled()->importPreset(file);
    EXPECT_EQ(error(), named + refusal);
    EXPECT_FALSE(state().presetRequest);
    model->dismissError();
    settled()->exportPreset(endless, folder.path / "endless.corvanepreset");
    EXPECT_EQ(error(), refusal);
    EXPECT_EQ(namesIn(folder.path), (Names{"mac", "mine.corvanepreset"}));

    setContents(file, R"({"format": 1, "name": "Mine", "tweaks": ["dock.autohide", "dock.unheard_of"]})");
    settled()->importPreset(file);
    EXPECT_EQ(state().presetRequest.value().plan.toApply(), Texts{"dock.autohide"});
    EXPECT_EQ(state().presetRequest->plan.unknown, Texts{"dock.unheard_of"});
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

    settled()->saveReport(sample.systemRoot());
    EXPECT_NE(error(), "") << "the reason is the lane's";
    options.dryRun = true;
    open();
    settled()->saveReport(inFolder("dry.md"));
    EXPECT_EQ(error(), "There is no report to save. " + model->whyNothingReal().value());
    EXPECT_FALSE(fs::exists(inFolder("dry.md")));
}

}  // namespace brell::testing
