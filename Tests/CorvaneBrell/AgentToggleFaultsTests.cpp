// An agent in an unusual state is never lost, whichever command of a change goes wrong and how: it is as it
// was captured, or its entry is active and brings it back.

#include <gtest/gtest.h>

#include "Tests/CorvaneBrell/AgentToggleFixture.h"

namespace brell {
namespace {

using testing::AgentToggleFixture;
using testing::contentsOf;
using testing::setContents;

struct Trouble {
    const char* name;
    ToolFault fault;
    bool lasts;          // the later changes go wrong in the same way
    bool hitsQuestions;  // and not only changes
};
const std::vector<Trouble>& troubles() {
    static const std::vector<Trouble> all{
        {"refuses", ToolFault::refusing(5, "Input/output error"), false, false},
        {"keeps refusing", ToolFault::refusing(150, "Operation not permitted"), true, true},
        {"refuses after doing it", ToolFault::refusingAfterAll(1, "odd"), false, false},
        {"lies", ToolFault::lying(), false, true},
        {"keeps lying", ToolFault::lying(), true, true},
        {"hangs", ToolFault::hanging(), false, true},
        {"keeps hanging after doing it", ToolFault::hangingAfterwards(), true, false},
    };
    return all;
}

struct Scenario {
    const char* label;
    bool off;  // turned off, else on
    const char* captured;
    const char* afterRestoring;
};

class AgentFaultsTest : public ::testing::TestWithParam<Scenario>, protected AgentToggleFixture {
protected:
    // Lets the n-th command from now on go wrong; gives whether that came to pass.
    std::shared_ptr<bool> plan(int n, const Trouble& trouble) {
        auto reached = std::make_shared<bool>(false);
        auto isDue = [=, left = n](const AllowedCommand& command) mutable {
            if (*reached) return trouble.lasts && command.isWrite();
            if (!trouble.hitsQuestions && !command.isWrite()) return false;
            return *reached = left-- == 0;
        };
        tools->interfere([=, fault = trouble.fault](const AllowedCommand& command) mutable {
            return isDue(command) ? std::optional(fault) : std::nullopt;
        });
        return reached;
    }

    void startAgain() {
        engine.restoreAll({});
        ASSERT_TRUE(journal.active().empty());
        setContents(SimulatedLaunchd::stateFile(mac.systemRoot()), launchdAtFirst);
    }

    // Gives whether the fault came to pass; what it interrupts is judged, and then put back.
    bool survives(int n, const Trouble& trouble, const std::function<void()>& change) {
        SCOPED_TRACE(std::string(trouble.name) + " at command " + std::to_string(n));
        const auto reached = plan(n, trouble);
        try {
            change();
        } catch (const std::exception&) {
        }
        tools->interfere({});
        EXPECT_TRUE(isBack(stateOf(GetParam().label)) || journal.activeEntry(key))
            << stateOf(GetParam().label);

        EXPECT_TRUE(engine.recoverInterrupted().failed.empty());
        EXPECT_TRUE(engine.restoreAll({}).failed.empty());
        EXPECT_TRUE(isBack(stateOf(GetParam().label))) << stateOf(GetParam().label);
        EXPECT_TRUE(journal.active().empty());
        return *reached;
    }

    bool isBack(const std::string& state) const {
        return state == GetParam().captured || state == GetParam().afterRestoring;
    }
    void switchAgent() { GetParam().off ? toggle.turnOff(record) : toggle.turnOn(record); }

    const LaunchAgentRecord record = agent(GetParam().label);
    const std::string key = std::string("agent:") + GetParam().label;
    const std::string launchdAtFirst = contentsOf(SimulatedLaunchd::stateFile(mac.systemRoot()));
};

constexpr int mostCommands = 60;

TEST_P(AgentFaultsTest, AChangeThatGoesWrongLeavesTheAgentAsItWasOrItsEntryActive) {
    ASSERT_EQ(stateOf(GetParam().label), GetParam().captured);
    for (const Trouble& trouble : troubles()) {
        int n = 0;
        while (n < mostCommands && survives(n, trouble, [&] { switchAgent(); })) {
            ++n;
            startAgain();
        }
        EXPECT_GE(n, 2) << trouble.name;  // two changes at least, each hit once
        EXPECT_LT(n, mostCommands);
        startAgain();
    }
}

TEST_P(AgentFaultsTest, ARestoreThatGoesWrongCanBeRunAgain) {
    for (const Trouble& trouble : troubles()) {
        for (int n = 0, more = true; more && n < mostCommands; ++n) {
            startAgain();
            switchAgent();
            ASSERT_EQ(stateOf(GetParam().label), GetParam().off ? "disabled, not loaded" : "enabled, loaded");
            more = survives(n, trouble, [&] { engine.restoreAll({}); });
        }
        startAgain();
    }
}

INSTANTIATE_TEST_SUITE_P(
    Agents, AgentFaultsTest,
    ::testing::Values(Scenario{"org.fernwright.notes", true, "absent, not loaded", "enabled, not loaded"},
                      Scenario{"com.tallowgate.agent", false, "disabled, loaded", "disabled, loaded"},
                      Scenario{"com.spotify.client.startuphelper", false, "disabled, not loaded",
                               "disabled, not loaded"}));

}  // namespace
}  // namespace brell
