#include "CorvaneBrell/Model/Relauncher.h"

#include <gtest/gtest.h>

#include "CorvaneBrell/SampleMac/SimulatedApplications.h"
#include "Tests/Support/FakeMainLoop.h"
#include "Tests/Support/Testing.h"

using namespace brell;
using namespace brell::testing;
using namespace std::chrono_literals;
using Relauncher::Outcome;
using Relauncher::Target;

namespace {

const std::string dock = "com.apple.dock";
const std::string openDock = "open /System/Library/CoreServices/Dock.app";
constexpr auto never = std::nullopt;

class RelauncherTest : public ::testing::Test {
protected:
    // Moves the clock in small steps until there is an outcome; how long that took.
    std::chrono::milliseconds relaunchDock(bool dryRun = false) {
        outcomes.clear();
        const auto begin = loop.now();
        const auto handle = start(dryRun);
        while (outcomes.empty() && loop.now() - begin < 60s) loop.advance(100ms);
        const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(loop.now() - begin);
        loop.advance(60s);  // nothing more comes
        return took;
    }
    Relauncher::Handle start(bool dryRun = false) {
        return Relauncher::relaunch(Target::dock, dryRun, apps, loop,
                                    [this](Outcome outcome) { outcomes.push_back(outcome); });
    }

    FakeMainLoop loop;
    SimulatedApplications apps{loop};
    std::vector<Outcome> outcomes;
};

TEST_F(RelauncherTest, EndsAsTheAppBehaves) {
    struct Case {
        const char* what;
        bool running;
        ApplicationBehaviour behaviour;
        Outcome outcome;
        std::chrono::milliseconds took;
        bool opens;
    };
    for (const Case& c : {
             Case{"quick", true, {0ms, 0ms}, Outcome::relaunched, 100ms, true},
             {"slow both ways", true, {4900ms, 9900ms}, Outcome::relaunched, 5000ms + 10000ms, true},
             {"gone right at the limit", true, {5000ms, 0ms}, Outcome::relaunched, 5000ms, true},
             {"gone too late", true, {5100ms, 0ms}, Outcome::didNotQuit, 5000ms, false},
             {"does not quit", true, {never, 0ms}, Outcome::didNotQuit, 5000ms, false},
             {"comes back too late", true, {0ms, 10100ms}, Outcome::didNotReopen, 10000ms, true},
             {"does not come back", true, {0ms, never}, Outcome::didNotReopen, 10000ms, true},
             {"not running", false, {0ms, 300ms}, Outcome::openedNotRunning, 400ms, true},
             {"not running and can't be opened", false, {0ms, never}, Outcome::openFailed, 10000ms, true},
         }) {
        SCOPED_TRACE(c.what);
        apps.setBehaviour(dock, {0ms, 0ms});
        apps.endAll(dock);
        if (c.running) apps.launchAnother(dock);
        apps.setBehaviour(dock, c.behaviour);
        apps.requests.clear();

        EXPECT_EQ(relaunchDock(), c.took);

        EXPECT_EQ(outcomes, std::vector{c.outcome});
        std::vector<std::string> requests;
        if (c.running) requests.push_back("quit " + dock);
        if (c.opens) requests.push_back(openDock);
        EXPECT_EQ(apps.requests, requests);  // asked once each, and nothing else
    }
}

TEST_F(RelauncherTest, WaitsForEveryInstance) {
    apps.setBehaviour(dock, {1s, 0ms});
    apps.requestQuit(apps.running(dock).at(0));  // this one will go, the second one will not
    apps.setBehaviour(dock, {never, 0ms});
    apps.launchAnother(dock);
    apps.requests.clear();
    EXPECT_EQ(relaunchDock(), 5s);
    EXPECT_EQ(apps.requests, (Texts{"quit " + dock, "quit " + dock}));
    EXPECT_EQ(outcomes, std::vector{Outcome::didNotQuit});
    EXPECT_EQ(apps.running(dock).size(), 1U);
}

TEST_F(RelauncherTest, AnAppThatCameBackByItselfDoesNotRunTwice) {
    apps.setBehaviour(dock, {1s, 0ms});
    const auto handle = start();
    loop.advance(500ms);
    apps.launchAnother(dock);
    loop.advance(10s);
    EXPECT_EQ(outcomes, std::vector{Outcome::relaunched});
    EXPECT_EQ(apps.running(dock).size(), 1U);
}

TEST_F(RelauncherTest, TheTimeToComeBackBeginsWithTheAnswer) {
    apps.setAnswersAfter(30s);
    apps.setBehaviour(dock, {0ms, 39s});
    EXPECT_GE(relaunchDock(), 39s);
    EXPECT_EQ(outcomes, std::vector{Outcome::relaunched});
}

TEST_F(RelauncherTest, ADryRunAsksNothingOfAnyApp) {
    relaunchDock(true);
    EXPECT_EQ(outcomes, std::vector{Outcome::dryRun});
    EXPECT_EQ(apps.requests, Texts());
}

TEST_F(RelauncherTest, LettingGoCallsTheRestOff) {
    apps.setAnswersAfter(1s);
    apps.setBehaviour(dock, {1s, 3s});
    // Before it begins, while the app quits, before the answer, while the app comes back.
    for (const auto moment : {0ms, 500ms, 1500ms, 2500ms}) {
        apps.requests.clear();
        auto handle = start();
        if (moment > 0ms) loop.advance(moment);
        const auto requestsSoFar = apps.requests;
        handle.reset();
        loop.advance(60s);
        EXPECT_EQ(apps.requests, requestsSoFar) << moment.count();
        if (apps.running(dock).empty()) apps.launchAnother(dock);
    }
    EXPECT_TRUE(outcomes.empty());
}

TEST(RelauncherTargetTest, TheDockComesFirstAndOnlyUnfinishedOutcomesStayPending) {
    using enum EffectClass;
    EXPECT_EQ(Relauncher::targetsFor({finderRelaunch, dockRelaunch, immediate}),
              (std::vector{Target::dock, Target::finder}));
    EXPECT_EQ(Relauncher::targetsFor({immediate, nextAppLaunch}), std::vector<Target>());
    for (const Outcome done : {Outcome::relaunched, Outcome::openedNotRunning, Outcome::dryRun})
        EXPECT_TRUE(isDone(done)) << message(done);
    for (const Outcome open : {Outcome::openFailed, Outcome::didNotQuit, Outcome::didNotReopen})
        EXPECT_FALSE(isDone(open)) << message(open);
    EXPECT_EQ(line(Target::dock, Outcome::dryRun), "The Dock would be relaunched (dry run).");
    EXPECT_EQ(line(Target::finder, Outcome::openedNotRunning), "Finder was not running; it has been opened.");
}

}  // namespace
