// The questions about login items, and what is told while one is switched.

#include "Tests/CorvaneBrell/Model/AppModelFixture.h"

namespace brell::testing {

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

}  // namespace brell::testing
