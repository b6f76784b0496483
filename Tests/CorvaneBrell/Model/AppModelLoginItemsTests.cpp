// The login items as the model shows and switches them.

#include <algorithm>

#include "CorvaneBrell/SampleMac/SampleContents.h"
#include "Tests/CorvaneBrell/Model/AppModelFixture.h"

namespace fs = std::filesystem;

namespace brell::testing {

namespace {

const std::string duskwatch = "com.halverson.duskwatch";

class LoginItemsTest : public AppModelTest {
protected:
    const LoginItemRow& rowOf(const std::string& label) const {
        for (const LoginItemRow& row : state().loginItems)
            if (row.record && row.record->label() == label) return row;
        throw std::runtime_error("no row of " + label);
    }
    void ask(const std::string& label, bool turnOn) { settled()->askAgents({rowOf(label).id}, turnOn); }

    // macOS's list of background items.
    const fs::path taskList = SampleContents::taskDumpFile(sample.systemRoot());
    const fs::path launchdState = SimulatedLaunchd::stateFile(sample.systemRoot());
};

}  // namespace

TEST_F(LoginItemsTest, AgentsAreConfirmedSwitchedAndSwitchedBack) {
    open();
    settled()->loadLoginItems();
    ask(duskwatch, false);
    sample.openTools()->launchd().setBehaviour(duskwatch, {8, 0, 37, {}});  // nearly two seconds
    Texts told;
    std::size_t interrupted = 0;
    model->setObserver([&](Topic) {
        interrupted += state().interrupted.size();
        const auto& activity = state().changeActivity;
        if (!activity || (!told.empty() && told.back() == activity->what)) return;
        told.push_back(activity->what);
        model->refreshAll();
    });
    settled()->confirmAgents();
    EXPECT_EQ(interrupted, 0u) << "a change of ours that is under way is not interrupted";
    EXPECT_EQ(told,
              (Texts{"Turning off " + duskwatch, "Waiting up to 10 seconds for " + duskwatch + " to end"}));
    EXPECT_FALSE(rowOf(duskwatch).isOn);

    ask(duskwatch, true);
    EXPECT_EQ(state().agentConfirm.value().targets, (std::vector<AgentTarget>{{false, true}}));
    model->cancelAgents();
    ask(duskwatch, false);
    EXPECT_FALSE(state().agentConfirm) << "what the switch would refuse is not offered first";
    EXPECT_TRUE(error().starts_with(duskwatch + " was changed outside Brell since Brell turned it off"));

    turnOnFromOutside(duskwatch);  // by its app
    settled()->refreshShown();
    EXPECT_TRUE(state().driftedAgents.empty()) << "launchd is not asked for other pages";
    settled()->show(Screen::journal);
    ASSERT_EQ(state().driftedAgents.size(), 1u);
    EXPECT_EQ(state().driftedAgents.front().entry.id, state().entries.front().id);

    settled()->undoLast();
    EXPECT_TRUE(state().restoreRequest) << "its commands are shown first";
    EXPECT_EQ(state().entries.front().status, EntryStatus::applied);
    settled()->confirmRestore();
    EXPECT_TRUE(rowOf(duskwatch).isOn);
    EXPECT_TRUE(state().driftedAgents.empty());
}

TEST(AgentConfirmRequest, SaysWhereItLeads) {
    for (const Texts& row : sampleRows("Words/agent-targets.txt")) {
        AgentConfirmRequest request{};
        std::istringstream targets(row[0]);
        for (std::string target; targets >> target;)
            request.targets.push_back({target.starts_with("disabled"), target.ends_with(",loaded")});
        request.turningOn = !request.targets.front().isDisabled;
        EXPECT_EQ(request.explanation(), row[1]);
    }
}

TEST_F(LoginItemsTest, TheTaskListIsAskedForOnlyOnceTheUserAllowedItAndMacOSGaveIt) {
    const std::string list = contentsOf(taskList);
    const auto isListed = [&] {
        const auto& rows = state().loginItems;
        return std::any_of(rows.begin(), rows.end(), [](const LoginItemRow& row) { return row.btm; });
    };
    const auto expect = [&](TaskList expected, bool isError = false) {
        settle();
        EXPECT_EQ(state().taskList, expected);
        EXPECT_EQ(isListed(), expected == TaskList::read);
        EXPECT_EQ(state().errorMessage.has_value(), isError);
        EXPECT_EQ(model->ownPreferences().readsTaskList(), expected == TaskList::read);
        model->dismissError();
    };
    const auto allow = [&] {
        model->askTaskList();
        model->confirmTaskList();
    };
    open().loadLoginItems();
    expect(TaskList::offered);

    // Left at the question, and later cancelled while macOS asks.
    model->askTaskList();
    ASSERT_TRUE(state().taskListRequest);
    model->cancelTaskList();
    EXPECT_FALSE(state().taskListRequest);
    model->confirmTaskList();
    expect(TaskList::offered);
    allow();
    EXPECT_TRUE(state().taskListActivity);
    model->askTaskList();
    EXPECT_FALSE(state().taskListRequest) << "it is being read";
    model->cancelTaskList();
    expect(TaskList::offered);

    fs::remove(taskList);
    allow();
    expect(TaskList::offered, true);
    setContents(taskList, list);
    allow();
    expect(TaskList::read);

    // Another window reads it at once. Its items stay while an agent is switched, and macOS is not asked.
    open().loadLoginItems();
    expect(TaskList::read);
    fs::remove(taskList);
    ask(duskwatch, false);
    model->confirmAgents();
    expect(TaskList::read);
    model->show(Screen::loginItems);
    model->lookAgain();
    expect(TaskList::read);
    model->refreshShown();
    expect(TaskList::offered, true);
}

TEST_F(LoginItemsTest, LoginItemsThatCameSinceTheLastVisitAreNew) {
    const auto visit = [&] {
        open().show(Screen::loginItems);
        settled()->loadLoginItems();
    };
    const auto news = [&] {
        Texts ids;
        for (const LoginItemRow& row : state().loginItems)
            if (state().seenItems.isNew(row)) ids.push_back(row.record ? *row.record->label() : row.id);
        return ids;
    };
    const auto install = [&](const std::string& label) { setContents(fileOf(label), jobFile(label)); };
    open();
    settled()->loadLoginItems();
    EXPECT_EQ(model->ownPreferences().seenItems(), SeenItems()) << "another page is shown";
    EXPECT_EQ(news(), Texts()) << "nobody can say what";
    visit();
    EXPECT_EQ(news(), Texts()) << "the first visit";
    install("com.acme.early");
    settled()->loadLoginItems();
    EXPECT_EQ(news(), Texts{"com.acme.early"}) << "it came while Brell was open";
    install("com.acme.late");
    for (const bool isDryRun : {true, false}) {
        options.dryRun = isDryRun;
        visit();
        EXPECT_EQ(news(), Texts{"com.acme.late"}) << "which no dry run takes for seen";
    }
    EXPECT_EQ(out.str().find("seenLoginItems"), std::string::npos) << "nor tells all of them";

    // A list that could not be read whole is not the one that was seen.
    const fs::path agents = sample.launchAgents(), away = agents.string() + ".away";
    const std::string whole = contentsOf(launchdState);
    setContents(launchdState, "damaged");
    visit();
    EXPECT_TRUE(error().starts_with("launchd could not be asked for the login items: ")) << error();
    EXPECT_TRUE(state().loginItemsLoaded);
    EXPECT_EQ(rowOf("com.halverson.duskwatchd").badge, LoginItemBadge::adminOnly) << "read from its file";
    setContents(launchdState, whole);
    visit();
    EXPECT_EQ(news(), Texts());
    fs::rename(agents, away);
    fs::create_symlink("a disk that is not attached", agents);
    visit();
    fs::remove(agents);
    fs::rename(away, agents);
    visit();
    EXPECT_EQ(news(), Texts());

    // The items that only macOS's list knows are not new because that is read for the first time.
    model->askTaskList();
    settled()->confirmTaskList();
    EXPECT_EQ(news(), Texts());
    std::string text = contentsOf(taskList);
    text.replace(text.find("16.com.ashgrove.print-setup"), 27, "16.com.acme.setup");
    setContents(taskList, text);
    visit();
    EXPECT_EQ(news(), Texts{"btm:16.com.acme.setup"});
}

}  // namespace brell::testing
