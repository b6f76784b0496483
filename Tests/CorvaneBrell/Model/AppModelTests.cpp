// The model beside the work of its lanes, beside other runs and at its end.

#include "CorvaneBrell/Dependencies.h"
#include "Tests/CorvaneBrell/Model/AppModelFixture.h"
#include "Tests/Support/EngineFixture.h"

namespace brell::testing {

TEST_F(AppModelTest, AChangeRunsBesideTheMainThreadAndIsAnnouncedOnce) {
    open();
    announced.clear();
    model->apply("dock.autohide");
    EXPECT_TRUE(state().changeActivity);
    EXPECT_TRUE(std::holds_alternative<Off>(state().statuses.at("dock.autohide").state));
    settle();
    EXPECT_EQ(announced, (std::map<Topic, int>{{Topic::settings, 1},
                                               {Topic::journal, 2},  // the undo, the entries
                                               {Topic::history, 1},
                                               {Topic::notices, 1},      // the relaunch
                                               {Topic::activity, 5}}));  // change and look, begun and ended
}

TEST_F(AppModelTest, AChangeThatAnotherRunIsMakingIsNotInterruptedNorOneThatWasPutBack) {
    {
        Dependencies crashed(options, out);
        breakOff(crashed.engine, *crashed.catalog.tweak("dock.autohide_instant"));
    }
    {
        const auto other = Journal::open(Journal::defaultDirectory(sample.home()));
        const auto held = other->exclusive();
        EXPECT_TRUE(open().state().interrupted.empty());
    }
    settled()->refreshAll();
    EXPECT_EQ(state().interrupted.size(), 1u);
    std::size_t shownAfterwards = 0;  // before everything was read again
    model->setObserver([&](Topic) {
        if (!state().changeActivity) shownAfterwards += state().interrupted.size();
    });
    settled()->recover({});
    EXPECT_EQ(shownAfterwards, 0u);
}

TEST_F(AppModelTest, WithoutAPlaceForADryRunBothReasonsAreGiven) {
    const fs::path journal = Journal::defaultDirectory(sample.home()) / "journal.json";
    setContents(journal, "damaged");
    const std::string before = fs::temp_directory_path();
    ::setenv("TMPDIR", journal.c_str(), 1);
    const std::string both = messageOf([&] { open(); });
    ::setenv("TMPDIR", before.c_str(), 1);
    EXPECT_TRUE(both.starts_with("The change journal could not be read: " + journal.string())) << both;
    EXPECT_NE(both.find(". The folder for temporary files, TMPDIR, could not be used: "), std::string::npos);
}

TEST_F(AppModelTest, WhileAnAgentIsSwitchedItIsToldWhatIsWaitedFor) {
    const std::string duskwatch = "com.halverson.duskwatch";
    sample.openTools()->launchd().setBehaviour(duskwatch, {8, 0, 37, {}});  // nearly two seconds
    open();
    settled()->loadLoginItems();
    settled()->askAgents({"user:" + fileOf(duskwatch).string()}, false);
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
}

// Before everything is read again the entries do not tell.
TEST_F(AppModelTest, AnUndoThatRunsCommandsShowsThemHoweverSoonItIsAskedFor) {
    open();
    settled()->loadLoginItems();
    settled()->askAgents({"user:" + fileOf("com.lumenfold.sync").string()}, false);
    bool isAsked = false;
    model->setObserver([&](Topic) {
        if (state().undo.next() && !state().changeActivity && !std::exchange(isAsked, true))
            model->undoLast();
    });
    settled()->confirmAgents();
    EXPECT_TRUE(isAsked && state().restoreRequest);
    EXPECT_TRUE(state().entries.front().isActive());
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

TEST_F(AppModelTest, TheModelMayEndWhileWorkIsUnderWay) {
    open();
    model->apply("dock.autohide");
    model->loadLoginItems();
    model->loadVolumes();
    ASSERT_TRUE(loop.waitFor([&] { return !state().loginItems.empty(); })) << "in the middle of it";
    model.reset();
    loop.runUntilIdle();  // nothing comes back to what is gone
    EXPECT_EQ(open().state().interrupted.size(), 0u) << "the change was finished, or never begun";
}

}  // namespace brell::testing
