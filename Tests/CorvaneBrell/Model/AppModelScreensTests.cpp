// Volumes, relaunches, presets and the other pages, over the sample Mac.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>

#include "CorvaneBrell/Model/TweakRowState.h"
#include "CorvaneBrell/SampleMac/PreferenceMarks.h"
#include "CorvaneBrell/SampleMac/SampleContents.h"
#include "Tests/CorvaneBrell/Model/AppModelFixture.h"

namespace brell {

namespace fs = std::filesystem;
using namespace testing;

TEST_F(AppModelTest, AnUpdateOfMacOSIsNoticedByTheVersionThatWasKept) {
    EXPECT_FALSE(openModel()->state().macOSUpdate) << "it never ran before";
    openModel()->keepMacOS();
    EXPECT_FALSE(openModel()->state().macOSUpdate);
    openModel()->ownPreferences().keepMacOS({99, 0, 0});
    EXPECT_FALSE(openModel()->state().macOSUpdate) << "an older one holds what it held";
    openModel()->ownPreferences().keepMacOS({15, 7, 0});
    const auto model = openModel();
    ASSERT_TRUE(model->state().macOSUpdate);
    EXPECT_EQ(model->state().macOSUpdate->from.text(), "15.7.0");
    EXPECT_EQ(model->state().macOSUpdate->to.text(), model->macOSVersion());
    model->dismissUpdate();
    EXPECT_FALSE(model->state().macOSUpdate);
}

TEST_F(AppModelTest, ARowThatCannotBeChangedSaysWhy) {
    writePreferenceMarks(sample.systemRoot(),
                         {{{std::string(globalDomain), "ApplePressAndHoldEnabled"}}, {}});
    setContents(sample.preferences() / "com.apple.dock.plist", "damaged");
    const auto model = openModel();
    const auto row = [&](const char* id) { return tweakRowState(*model, *model->catalog().tweak(id)); };
    EXPECT_FALSE(row("kb.hold_to_repeat").canChange);
    EXPECT_EQ(row("kb.hold_to_repeat").reason,
              "ApplePressAndHoldEnabled has a by-host value; Brell does not change it here.");
    EXPECT_FALSE(row("dock.autohide").canChange);
    EXPECT_EQ(row("dock.autohide").reason, model->state().statusErrors.at("dock.autohide"));
    EXPECT_TRUE(row("finder.show_hidden").canChange);
}

TEST_F(AppModelTest, VolumesAndReviewedDatesAreShown) {
    const auto model = openModel();
    settled(*model)->refreshShown();
    EXPECT_TRUE(model->state().volumes.empty() && !model->state().loginItemsLoaded) << "of other pages";
    settled(*model)->loadVolumes();
    ASSERT_FALSE(model->state().volumes.empty());
    EXPECT_EQ(model->state().volumes.front().volume, "/");
    EXPECT_FALSE(model->state().readingActivity);
    const std::size_t before = model->state().volumes.size();
    fs::create_directory(sample.systemRoot() / "Volumes" / "Stick");
    settled(*model)->loadVolumes();
    EXPECT_EQ(model->state().volumes.size(), before + 1);

    EXPECT_FALSE(model->reviewedDate("camera"));
    model->markReviewed("camera");
    EXPECT_TRUE(model->reviewedDate("camera"));
    EXPECT_EQ(model->state().reviewedTick, 1);
    EXPECT_TRUE(openModel()->reviewedDate("camera")) << "kept for the next launch";
}

TEST_F(AppModelTest, ARelaunchWaitsAcrossLaunchesAndAStubbornAppDoesNotHoldUpTheOther) {
    {
        const auto first = openModel();
        first->apply("dock.autohide");
        settled(*first)->apply("finder.show_hidden");
    }
    applications.setBehaviour("com.apple.dock", {std::nullopt, std::chrono::milliseconds(0)});
    applications.setBehaviour("com.apple.finder", {std::chrono::seconds(2), std::chrono::seconds(1)});
    const auto model = openModel();
    EXPECT_EQ(waiting(*model), (std::set{EffectClass::dockRelaunch, EffectClass::finderRelaunch}));

    model->askRelaunch();
    model->confirmRelaunch();
    loop.advance(std::chrono::seconds(30));
    ASSERT_TRUE(model->state().relaunchReport);
    EXPECT_EQ(*model->state().relaunchReport,
              (RelaunchReport{"The Dock did not quit within 5 seconds. Brell never forces a quit; try again "
                              "later or log out and back in. Finder relaunched.",
                              false}));
    EXPECT_EQ(waiting(*model), std::set{EffectClass::dockRelaunch});
    EXPECT_EQ(waiting(*openModel()), std::set{EffectClass::dockRelaunch});

    applications.endAll("com.apple.dock");
    EXPECT_EQ(waiting(*openModel()), std::set{EffectClass::dockRelaunch});
    applications.launchAnother("com.apple.dock");
    model->refreshShown();
    EXPECT_TRUE(waiting(*model).empty()) << "it was started anew in another way";
    EXPECT_FALSE(model->state().relaunchReport) << "else it would be told again after the next change";
    settle(*model);
    EXPECT_TRUE(waiting(*openModel()).empty());
}

TEST_F(AppModelTest, APresetIsShownAppliedAndReported) {
    const fs::path file = folder.path / "mine.corvanepreset";
    setContents(file, R"({"format": 1, "name": "Mine", "tweaks":
        ["dock.autohide", "dock.unheard_of", "mc.fast_animation", "finder.path_bar", "dock.no_bounce"]})");
    const auto model = openModel();
    settled(*model)->apply("dock.no_bounce");

    settled(*model)->importPreset(file);
    ASSERT_TRUE(model->state().presetRequest);
    const PresetPlan& plan = model->state().presetRequest->plan;
    EXPECT_EQ(plan.unknown, Texts{"dock.unheard_of"});
    EXPECT_EQ(plan.experimental, Texts{"mc.fast_animation"});
    EXPECT_EQ(plan.toApply(), Texts{"dock.autohide"}) << "one is on already, one is so already";
    settled(*model)->confirmPreset();
    EXPECT_EQ(model->changedTweaks(), (Texts{"dock.autohide", "dock.no_bounce"}));
    ASSERT_FALSE(model->state().presetReport.empty());
    EXPECT_EQ(model->state().presetReport.front(), "1 of 1 changes were made.");

    setContents(file, "{}");
    settled(*model)->importPreset(file);
    const std::string named = "The preset " + file.string() + " could not be imported. ";
    EXPECT_EQ(model->state().errorMessage, named + "This is not a preset file Brell can read.");
    const Preset endless{"", std::string(100'000, 'x'), "", {}};
    setContents(file, PresetFile::encode(endless));
    const std::string refusal = messageOf([&] { PresetFile::checkName(endless.name); });
    settled(*model)->importPreset(file);
    EXPECT_EQ(model->state().errorMessage, named + refusal);
    EXPECT_FALSE(model->state().presetRequest);
    model->dismissError();
    settled(*model)->exportPreset(endless, folder.path / "endless.corvanepreset");
    EXPECT_EQ(model->state().errorMessage, refusal);
    EXPECT_EQ(namesIn(folder.path), (Names{"mac", "mine.corvanepreset"}));
}

TEST_F(AppModelTest, ReportScriptAndPresetAreSavedWhereAskedOrTheReasonIsSaid) {
    const auto model = openModel();
    settled(*model)->apply("dock.autohide");
    const mode_t before = ::umask(0);
    model->saveRestoreScript(folder.path / "saved.sh");
    model->saveReport(folder.path / "saved.md");
    EXPECT_TRUE(model->state().fileActivity) << "what takes long says what it is";
    settled(*model)->exportPreset(Presets::shipped().front(), folder.path / "saved.corvanepreset");
    ::umask(before);
    for (const char* name : {"saved.sh", "saved.md", "saved.corvanepreset"})
        EXPECT_EQ(fs::status(folder.path / name).permissions(), fs::perms(0644)) << name;
    std::string script;
    settled(*model)->makeRestoreScript([&](const std::string& made) { script = made; });
    const auto behindTheDate = [](const std::string& text) { return text.substr(text.find("\n# Run it")); };
    EXPECT_EQ(behindTheDate(contentsOf(folder.path / "saved.sh")), behindTheDate(script));
    EXPECT_FALSE(model->state().fileActivity);
    EXPECT_NE(contentsOf(folder.path / "saved.md").find("Hide the Dock automatically"), std::string::npos);
    EXPECT_EQ(contentsOf(folder.path / "saved.corvanepreset"),
              PresetFile::encode(Presets::shipped().front()));
    EXPECT_FALSE(model->state().errorMessage);

    fs::create_directory(folder.path / "in-the-way");
    settled(*model)->saveReport(folder.path / "in-the-way");
    EXPECT_TRUE(model->state().errorMessage) << "the reason is the lane's";
    options.dryRun = true;
    const auto dry = openModel();
    settled(*dry)->saveReport(folder.path / "dry.md");
    EXPECT_EQ(
        dry->state().errorMessage,
        "There is no report to save. This is a dry run: what would be changed is printed, and nothing is "
        "changed.");
    EXPECT_FALSE(fs::exists(folder.path / "dry.md"));
}

TEST_F(AppModelTest, TheScreenAskedForIsShown) {
    options.openGroup = "journal";
    EXPECT_EQ(openModel()->state().screen, Screen::journal);
    options.openGroup = "nowhere";
    EXPECT_EQ(openModel()->state().screen, Screen::finder);
}

}  // namespace brell
