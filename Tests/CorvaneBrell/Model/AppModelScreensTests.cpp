// Login items, volumes, relaunches, presets and the other pages, over the sample Mac.

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

namespace {

const LoginItemRow* rowOf(const AppModel& model, const std::string& label) {
    for (const LoginItemRow& row : model.state().loginItems)
        if (row.record && row.record->label() == label) return &row;
    return nullptr;
}

}  // namespace

TEST_F(AppModelTest, AgentsAreConfirmedSwitchedAndSwitchedBack) {
    const auto model = openModel();
    model->loadLoginItems();
    EXPECT_TRUE(model->isBusy());
    settle(*model);
    EXPECT_GE(announced[Topic::activity], 3) << "what is being read, and that it is done";
    EXPECT_TRUE(model->state().loginItemsLoaded);
    EXPECT_FALSE(model->state().readingActivity);
    const LoginItemRow* row = rowOf(*model, "com.halverson.duskwatch");
    ASSERT_TRUE(row);
    ASSERT_TRUE(row->isOn);

    settled(*model)->askAgents({row->id}, false);
    ASSERT_TRUE(model->state().agentConfirm);
    sample.openTools()->launchd().setBehaviour("com.halverson.duskwatch",
                                               {8, 0, 37, {}});  // nearly two seconds
    Texts told;
    std::size_t interrupted = 0;
    model->setObserver([&](Topic) {
        interrupted += model->state().interrupted.size();
        const auto& activity = model->state().changeActivity;
        if (!activity || (!told.empty() && told.back() == activity->what)) return;
        told.push_back(activity->what);
        model->refreshAll();
    });
    settled(*model)->confirmAgents();
    EXPECT_EQ(interrupted, 0u) << "a change of ours that is under way is not interrupted";
    EXPECT_EQ(told, (Texts{"Turning off com.halverson.duskwatch",
                           "Waiting up to 10 seconds for com.halverson.duskwatch to end"}));
    ASSERT_TRUE(rowOf(*model, "com.halverson.duskwatch"));
    EXPECT_FALSE(rowOf(*model, "com.halverson.duskwatch")->isOn);
    EXPECT_EQ(model->state().entries.front().status, EntryStatus::applied);

    const std::string id = rowOf(*model, "com.halverson.duskwatch")->id;
    settled(*model)->askAgents({id}, true);
    ASSERT_TRUE(model->state().agentConfirm);
    EXPECT_EQ(model->state().agentConfirm->targets, (std::vector<AgentTarget>{{false, true}}));
    model->cancelAgents();
    settled(*model)->askAgents({id}, false);
    EXPECT_FALSE(model->state().agentConfirm) << "what the switch would refuse is not offered first";

    // Its app turns it on again.
    const auto tools = sample.openTools();
    ASSERT_TRUE(
        tools->run(AllowedCommand::launchctlEnable("gui/501", "com.halverson.duskwatch")).succeeded());
    settled(*model)->refreshShown();
    EXPECT_TRUE(model->state().driftedAgents.empty()) << "launchd is not asked for other pages";
    settled(*model)->show(Screen::journal);
    ASSERT_EQ(model->state().driftedAgents.size(), 1u);
    EXPECT_EQ(model->state().driftedAgents.front().entry.id, model->state().entries.front().id);

    settled(*model)->undoLast();
    ASSERT_TRUE(model->state().restoreRequest) << "its commands are shown first";
    EXPECT_EQ(model->state().entries.front().status, EntryStatus::applied);
    settled(*model)->confirmRestore();
    EXPECT_EQ(model->state().entries.front().status, EntryStatus::restored);
    EXPECT_TRUE(rowOf(*model, "com.halverson.duskwatch")->isOn);
    EXPECT_TRUE(model->state().driftedAgents.empty());
}

TEST(AgentConfirmRequest, SaysWhereItLeads) {
    const AgentTarget off{true, false}, offButLoaded{true, true}, on{false, true}, onLater{false, false};
    const std::string fileStays = " The file that describes it stays as it is.";
    const struct {
        bool turningOn;
        std::vector<AgentTarget> targets;
        std::string words;
    } rows[] = {
        {false, {off, off}, "stops it now and starts it no more at login." + fileStays},
        {false,
         {offButLoaded},
         "starts it no more at login. It stays loaded until you log out, as it was before Brell turned it "
         "on." +
             fileStays},
        {false,
         {off, offButLoaded},
         "starts them no more at login, and stops now those that were not loaded before Brell turned them "
         "on." +
             fileStays},
        {true, {on}, "starts it again, now and at each login."},
        {true,
         {onLater},
         "starts it again at each login, but not now: it was not loaded before Brell turned it off."},
        {true,
         {on, onLater},
         "starts them again at each login, and now those that were loaded before Brell turned them off."},
    };
    for (const auto& row : rows) {
        AgentConfirmRequest request{};
        request.turningOn = row.turningOn;
        request.targets = row.targets;
        EXPECT_EQ(request.explanation(), "Brell runs exactly these commands: launchd " + row.words);
    }
}

TEST_F(AppModelTest, TheTaskListIsAskedForOnlyOnceTheUserAllowedItAndMacOSGaveIt) {
    const fs::path file = SampleContents::taskDumpFile(sample.systemRoot());
    const std::string list = contentsOf(file);
    auto model = openModel();
    const auto isListed = [&] {
        const auto& rows = model->state().loginItems;
        return std::any_of(rows.begin(), rows.end(), [](const LoginItemRow& row) { return row.btm; });
    };
    const auto expect = [&](TaskList taskList, bool isError) {
        settle(*model);
        EXPECT_EQ(model->state().taskList, taskList);
        EXPECT_EQ(isListed(), taskList == TaskList::read);
        EXPECT_EQ(model->state().errorMessage.has_value(), isError);
        EXPECT_EQ(model->ownPreferences().readsTaskList(), taskList == TaskList::read);
        model->dismissError();
    };
    model->loadLoginItems();
    expect(TaskList::offered, false);

    // Left at the question, and later cancelled while macOS asks.
    model->askTaskList();
    ASSERT_TRUE(model->state().taskListRequest);
    model->cancelTaskList();
    EXPECT_FALSE(model->state().taskListRequest);
    model->confirmTaskList();
    expect(TaskList::offered, false);
    model->askTaskList();
    model->confirmTaskList();
    EXPECT_TRUE(model->state().taskListActivity);
    model->askTaskList();
    EXPECT_FALSE(model->state().taskListRequest) << "it is being read";
    model->cancelTaskList();
    expect(TaskList::offered, false);

    fs::remove(file);
    model->askTaskList();
    model->confirmTaskList();
    expect(TaskList::offered, true);
    setContents(file, list);
    model->askTaskList();
    model->confirmTaskList();
    expect(TaskList::read, false);

    // Another window reads it at once. What stood there stays while an agent is switched, and macOS is not
    // asked.
    model = openModel();
    model->loadLoginItems();
    expect(TaskList::read, false);
    fs::remove(file);
    settled(*model)->askAgents({rowOf(*model, "com.halverson.duskwatch")->id}, false);
    settled(*model)->confirmAgents();
    expect(TaskList::read, false);
    model->show(Screen::loginItems);
    model->lookAgain();
    expect(TaskList::read, false);
    model->refreshShown();
    expect(TaskList::offered, true);
}

TEST_F(AppModelTest, LoginItemsThatCameSinceTheLastVisitAreNew) {
    std::unique_ptr<AppModel> model = openModel();
    const auto visit = [&] {
        model = openModel();
        model->show(Screen::loginItems);
        settled(*model)->loadLoginItems();
    };
    const auto news = [&] {
        Texts ids;
        for (const LoginItemRow& row : model->state().loginItems)
            if (model->state().seenItems.isNew(row))
                ids.push_back(row.record ? *row.record->label() : row.id);
        return ids;
    };
    const auto install = [&](const std::string& label) {
        setContents(sample.launchAgents() / (label + ".plist"),
                    "<plist><dict><key>Label</key><string>" + label + "</string></dict></plist>");
    };
    settled(*model)->loadLoginItems();
    EXPECT_EQ(model->ownPreferences().seenItems(), SeenItems()) << "another page is shown";
    visit();
    EXPECT_EQ(news(), Texts()) << "the first visit";
    install("com.acme.early");
    settled(*model)->loadLoginItems();
    EXPECT_EQ(news(), Texts{"com.acme.early"}) << "it came while Brell was open";
    install("com.acme.late");
    for (const bool isDryRun : {true, false}) {
        options.dryRun = isDryRun;
        visit();
        EXPECT_EQ(news(), Texts{"com.acme.late"}) << "which no dry run takes for seen";
    }

    // A list that could not be read whole is not the one that was seen.
    const fs::path launchd = SimulatedLaunchd::stateFile(sample.systemRoot());
    const std::string state = contentsOf(launchd);
    setContents(launchd, "damaged");
    visit();
    EXPECT_TRUE(model->state().errorMessage);
    setContents(launchd, state);
    visit();
    EXPECT_EQ(news(), Texts());

    // What only macOS's list knows is not new because that is read for the first time.
    model->askTaskList();
    settled(*model)->confirmTaskList();
    EXPECT_EQ(model->state().taskList, TaskList::read);
    EXPECT_EQ(news(), Texts());
    const fs::path list = SampleContents::taskDumpFile(sample.systemRoot());
    std::string text = contentsOf(list);
    text.replace(text.find("16.com.ashgrove.print-setup"), 27, "16.com.acme.setup");
    setContents(list, text);
    visit();
    EXPECT_EQ(news(), Texts{"btm:16.com.acme.setup"});
}

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

TEST_F(AppModelTest, AnItemThatMayNotBeChangedIsRefusedInWords) {
    const auto model = openModel();
    settled(*model)->loadLoginItems();
    settled(*model)->askAgents({rowOf(*model, "com.apple.cleanup-helper")->id}, false);
    EXPECT_FALSE(model->state().agentConfirm);
    EXPECT_EQ(model->state().errorMessage,
              "com.apple.cleanup-helper is an Apple or Brell item; it is never changed.");
}

TEST_F(AppModelTest, WhatLaunchdCannotBeAskedHidesNothingElse) {
    const auto model = openModel();
    const auto launchd = sample.systemRoot() / "private" / "var" / "db";
    for (const auto& entry : fs::recursive_directory_iterator(launchd))
        if (entry.path().extension() == ".plist") setContents(entry.path(), "damaged");
    settled(*model)->loadLoginItems();
    ASSERT_TRUE(model->state().errorMessage);
    EXPECT_TRUE(model->state().errorMessage->starts_with("launchd could not be asked for the login items: "));
    EXPECT_TRUE(rowOf(*model, "com.halverson.duskwatchd")) << "the system's are read from files";
    EXPECT_TRUE(model->state().loginItemsLoaded);
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

TEST_F(AppModelTest, AScriptThatCannotBeWrittenIsToldOnce) {
    const auto model = openModel();
    fs::create_directories(model->journalDirectory() / "restore.sh");  // in the way
    settled(*model)->apply("dock.autohide");
    EXPECT_TRUE(model->state().errorMessage.value_or("").starts_with("The restore script "));
    model->dismissError();
    settled(*model)->apply("finder.show_hidden");
    EXPECT_FALSE(model->state().errorMessage);
}

TEST_F(AppModelTest, TheScreenAskedForIsShown) {
    options.openGroup = "journal";
    EXPECT_EQ(openModel()->state().screen, Screen::journal);
    options.openGroup = "nowhere";
    EXPECT_EQ(openModel()->state().screen, Screen::finder);
}

}  // namespace brell
