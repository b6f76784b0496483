// The login items as the model shows and switches them, over the sample Mac.

#include <gtest/gtest.h>

#include <algorithm>

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
    EXPECT_EQ(news(), Texts()) << "nobody can say what";
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
    EXPECT_EQ(out.str().find("seenLoginItems"), std::string::npos) << "nor tells all of them";

    // A list that could not be read whole is not the one that was seen.
    const fs::path launchd = SimulatedLaunchd::stateFile(sample.systemRoot());
    const std::string state = contentsOf(launchd);
    setContents(launchd, "damaged");
    visit();
    EXPECT_TRUE(model->state().errorMessage);
    setContents(launchd, state);
    visit();
    EXPECT_EQ(news(), Texts());

    const fs::path agents = sample.launchAgents();
    fs::rename(agents, agents.string() + ".away");
    fs::create_symlink("a disk that is not attached", agents);
    visit();
    fs::remove(agents);
    fs::rename(agents.string() + ".away", agents);
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

}  // namespace brell
