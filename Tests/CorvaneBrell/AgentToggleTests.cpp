#include <gtest/gtest.h>

#include "Tests/CorvaneBrell/AgentToggleFixture.h"

namespace brell {
namespace {

using namespace testing;
using namespace std::chrono_literals;

struct AgentToggleTest : ::testing::Test, AgentToggleFixture {};

TEST_F(AgentToggleTest, RefusesEverythingThatIsNotPlainlyTheUsersOwnAgent) {
    const LaunchAgentRecord linked = record("io.quillmark.backup.plist");
    std::vector<std::pair<LaunchAgentRecord, std::string>> refusals{
        {reader().systemAgents().front(),
         "Only your own LaunchAgents can be changed here; this one needs an administrator."},
        {linked, linked.plist.path +
                     " is a link to ../../Dotfiles/io.quillmark.backup.plist, not a file directly inside "
                     "your LaunchAgents folder."}};
    for (const Texts& row : sampleRows("Words/agent-refusals.txt")) {
        refusals.emplace_back(record(row[0]), row[2]);
        if (row[1] != "-") refusals.back().first.plist.label = row[1];
    }
    setContents(mac.launchAgents() / "a.PLIST", jobFile(plain));
    setContents(mac.home() / "Library/LaunchAgents2/a.plist", jobFile(plain));
    for (const char* outside : {"Dotfiles/io.quillmark.backup.plist", "Library/LaunchAgents2/a.plist",
                                "Library/LaunchAgents/a.PLIST"}) {
        const std::string file = mac.home() / outside;
        refusals.emplace_back(linked, file + " is not a file directly inside your LaunchAgents folder.");
        refusals.back().first.plist = LaunchAgentPlist::read(file);
    }
    const std::string launchdBefore = launchdState();
    for (const auto& [record, message] : refusals) {
        for (const auto change : {&AgentToggle::turnOff, &AgentToggle::turnOn})
            EXPECT_EQ(failureOf<AgentToggleError>([&] { (toggle.*change)(record); }),
                      (AgentToggleFailure{AgentToggleProblem::refused, message}));
        EXPECT_EQ(messageOf([&] { toggle.previewOff(record); }), message);
        EXPECT_EQ(messageOf([&] { toggle.previewOn(record); }), message);
    }
    EXPECT_EQ(launchdState(), launchdBefore);
    EXPECT_EQ(namesIn(journalDirectory), Names());
}

TEST_F(AgentToggleTest, RefusesAFileThatWasReplacedSinceItWasListed) {
    const LaunchAgentRecord listed = agent(plain);
    setContents(fileOf(plain), "not a job");
    EXPECT_EQ(notOff(listed), "The plist's Label (none) does not match homebrew.mxcl.redis.");
    EXPECT_EQ(stateOf(plain), "absent, loaded");
}

TEST_F(AgentToggleTest, RefusesASwitchThatStandsThatWayAlreadyAndLeavesNothingBehind) {
    const std::string launchdBefore = launchdState();
    EXPECT_EQ(notOff("com.spotify.client.startuphelper"),
              "com.spotify.client.startuphelper is already turned off.");
    EXPECT_EQ(notOff("com.tallowgate.agent"),
              "com.tallowgate.agent is already turned off, and runs until it ends or you log out.");
    for (const char* label : {"homebrew.mxcl.redis", "us.zoom.updater", "org.fernwright.notes"})
        EXPECT_EQ(notOn(label), std::string(label) + " is not turned off.");
    const LaunchAgentRecord off = agent("com.spotify.client.startuphelper");
    for (const char* warning : {"", "launchctl is deprecated"}) {
        tools->failNext(AllowedCommand::Kind::launchctlPrintDisabled, ToolFault::refusing(0, warning));
        EXPECT_EQ(notOff(off),
                  "launchctl refused: /bin/launchctl print-disabled gui/501: it answered nothing");
    }
    EXPECT_EQ(launchdState(), launchdBefore);
    EXPECT_EQ(namesIn(journalDirectory), Names());
}

TEST_F(AgentToggleTest, RefusesWhatItCouldNotLoadAgainFromBehindALink) {
    const fs::path elsewhere = mac.home() / "Dotfiles" / "agents";
    fs::rename(mac.launchAgents(), elsewhere);
    fs::create_symlink(elsewhere, mac.launchAgents());
    AgentToggle linked(*tools, engine, SampleMac::uid, mac.launchAgents(), time.waiting());
    const LaunchAgentRecord on = agent(plain);
    const LaunchAgentRecord off = agent("com.spotify.client.startuphelper");
    const auto message = [&](const LaunchAgentRecord& record) {
        return (elsewhere / (*record.label() + ".plist")).string() +
               " could not be loaded again: your LaunchAgents folder leads to " + elsewhere.string() +
               ", which is no folder Library/LaunchAgents.";
    };
    EXPECT_EQ(messageOf([&] { linked.previewOff(on); }), message(on));
    EXPECT_EQ(messageOf([&] { linked.turnOff(on); }), message(on));
    EXPECT_EQ(messageOf([&] { linked.turnOn(off); }), message(off));
    EXPECT_EQ(stateOf(plain), "absent, loaded");
    EXPECT_EQ(namesIn(journalDirectory), Names());
}

TEST_F(AgentToggleTest, NeverTakesAnotherFileWithTheSameLabelForTheAgent) {
    const std::string file = fileOf(plain).string();
    const std::string twin = (mac.launchAgents() / "twin.plist").string();
    setContents(twin, jobFile(plain));
    const auto loadTwin = [&, other = std::shared_ptr(mac.openTools())] {
        other->run(AllowedCommand::launchctlEnable("gui/501", plain));
        other->run(AllowedCommand::launchctlBootstrap("gui/501", twin));
    };
    EXPECT_EQ(notOff(record("twin.plist")),
              plain + " is loaded from " + file + ", not from " + twin + "; it is not changed.");
    EXPECT_EQ(namesIn(journalDirectory), Names());

    const JournalEntry off = toggle.turnOff(agent(plain));
    loadTwin();
    EXPECT_EQ(notOn(plain), changedOutside(plain, "(launchd shows enabled, loaded)"));
    EXPECT_EQ(engine.restore(off.id, false).status, EntryStatus::restored) << "what is there now is left";
    EXPECT_EQ(toggle.currentState(plain).loaded.path, twin);

    bootout(plain);
    tools->run(AllowedCommand::launchctlDisable("gui/501", plain));
    const JournalEntry on = toggle.turnOn(agent(plain));
    bootout(plain);
    loadTwin();
    EXPECT_EQ(notOff(plain),
              plain + " is loaded from " + twin + ", not from " + file + "; it is not changed.");
    EXPECT_EQ(journal.active(), std::vector{on});
}

TEST_F(AgentToggleTest, ShowsTheCommandsBeforehand) {
    const std::string enable = "/bin/launchctl enable gui/501/" + plain;
    const std::string disable = "/bin/launchctl disable gui/501/" + plain;
    const std::string bootout = "/bin/launchctl bootout gui/501/" + plain;
    const auto loading = [](const fs::path& file) {
        return AllowedCommand::launchctlBootstrap("gui/501", file.string()).rendered();
    };
    const std::string bootstrap = loading(fileOf(plain)), ifNot = " (only if it is not loaded)";
    EXPECT_EQ(toggle.previewOff(agent(plain)), (Texts{bootout, disable}));
    EXPECT_EQ(toggle.previewOn(agent(plain)), (Texts{enable, bootstrap}));

    const auto restoring = [&](bool wasLoaded, AgentOverride override) {
        return toggle.previewRestore({plain, fileOf(plain).string(), wasLoaded, override});
    };
    EXPECT_EQ(restoring(true, AgentOverride::absent), (Texts{enable, bootstrap + ifNot}));
    EXPECT_EQ(restoring(false, AgentOverride::enabled), (Texts{enable, bootout + " (only if it is loaded)"}));
    EXPECT_EQ(restoring(false, AgentOverride::disabled), (Texts{bootout, disable}));
    EXPECT_EQ(restoring(true, AgentOverride::disabled), (Texts{enable + ifNot, bootstrap + ifNot, disable}));

    // The opposite of an applied change restores that change; what the switch would refuse is refused.
    const JournalEntry off = toggle.turnOff(agent(plain));
    EXPECT_EQ(toggle.preview(agent(plain), AgentSwitch::on),
              (AgentPreview{toggle.previewRestore(*off.agent), {false, true}}));
    EXPECT_EQ(messageOf([&] { toggle.previewOff(agent(plain)); }), notOff(plain));
    const JournalEntry on = toggle.turnOn(agent("com.spotify.client.startuphelper"));
    EXPECT_EQ(toggle.preview(agent(on.agent->label), AgentSwitch::off),
              (AgentPreview{toggle.previewRestore(*on.agent), {true, false}}));
    interruptedTurningOff("com.lumenfold.sync");
    EXPECT_EQ(messageOf([&] { toggle.previewOn(agent("com.lumenfold.sync")); }),
              "com.lumenfold.sync has an interrupted change; restore it from the Journal first.");

    const fs::path renamed = mac.launchAgents() / "renamed.plist";
    fs::rename(fileOf(plain), renamed);
    EXPECT_EQ(toggle.previewRestore(*off.agent).back(), loading(renamed) + ifNot);
}

// Plain, slow, slow and talkative, crash-looping, in the binary form.
class AgentCycleTest : public AgentToggleTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(AgentCycleTest, OffOnOffRestoreBringsTheAgentBackEachTime) {
    const std::string label = GetParam();

    const JournalEntry off = toggle.turnOff(agent(label));
    EXPECT_EQ(off.tweakID, "agent:" + label);
    EXPECT_EQ(off.status, EntryStatus::applied);
    EXPECT_EQ(off.agent, (AgentCapture{label, fileOf(label).string(), true, AgentOverride::absent}));
    EXPECT_EQ(stateOf(label), "disabled, not loaded");
    EXPECT_EQ(notOff(label), changedOutside(label, "since Brell turned it off"));

    const JournalEntry on = toggle.turnOn(agent(label));
    EXPECT_EQ(on.id, off.id);
    EXPECT_EQ(on.status, EntryStatus::restored);
    EXPECT_EQ(stateOf(label), "enabled, loaded");

    const JournalEntry again = toggle.turnOff(agent(label));
    EXPECT_NE(again.id, off.id);
    EXPECT_EQ(again.agent->override, AgentOverride::enabled);
    EXPECT_EQ(engine.restore(again.id, false).status, EntryStatus::restored);
    EXPECT_EQ(stateOf(label), "enabled, loaded");
    EXPECT_EQ(journal.all().size(), 2u);
}

INSTANTIATE_TEST_SUITE_P(Agents, AgentCycleTest,
                         ::testing::Values("homebrew.mxcl.redis", "com.lumenfold.sync",
                                           "com.pebblewick.indexer", "com.orrerylabs.telemetry",
                                           "io.verdigris.relay"));

TEST_F(AgentToggleTest, TurnsOnWhatWasOffAndOffAgain) {
    const std::string label = "com.spotify.client.startuphelper";
    const JournalEntry on = toggle.turnOn(agent(label));
    EXPECT_TRUE(AgentToggle::brellTurnedOn(*on.agent));
    EXPECT_EQ(stateOf(label), "enabled, loaded");
    EXPECT_EQ(notOn(label), changedOutside(label, "since Brell turned it on"));

    bootout(label);
    EXPECT_EQ(notOff(label), changedOutside(label, "(launchd shows enabled, not loaded)"));
    bootstrap(fileOf(label));
    EXPECT_EQ(toggle.turnOff(agent(label)).id, on.id);
    EXPECT_EQ(stateOf(label), "disabled, not loaded");
}

}  // namespace
}  // namespace brell
