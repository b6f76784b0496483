#include "Tests/CorvaneBrell/AgentToggleFixture.h"

namespace fs = std::filesystem;

namespace brell {
namespace {

using namespace testing;
using namespace std::chrono_literals;

using AgentToggleTest = AgentToggleFixture;

TEST_F(AgentToggleTest, RefusesEverythingThatIsNotPlainlyTheUsersOwnAgent) {
    const LaunchAgentRecord good = agent(plain);
    const auto with = [&](auto&& change) {
        LaunchAgentRecord record = good;
        change(record);
        return record;
    };
    const auto labelled = [&](const std::string& label) {
        return with([&](LaunchAgentRecord& record) { record.plist.label = label; });
    };
    const auto at = [&](const fs::path& file) {
        setContents(file, jobFile(plain));
        return with([&](LaunchAgentRecord& record) { record.plist.path = file.string(); });
    };
    const auto notDirectlyInside = [](const fs::path& file) {
        return file.string() + " is not a file directly inside your LaunchAgents folder.";
    };
    const std::string noLabel = "This plist has no Label, so launchd cannot address it.";
    const fs::path sibling = mac.home() / "Library/LaunchAgents2/a.plist";
    const fs::path otherSuffix = mac.launchAgents() / "a.PLIST";
    const LaunchAgentRecord linked = record("io.quillmark.backup.plist");

    const std::vector<std::pair<LaunchAgentRecord, std::string>> refusals{
        {reader().systemAgents().front(),
         "Only your own LaunchAgents can be changed here; this one needs an administrator."},
        {record("untitled.plist"), noLabel},
        {labelled(""), noLabel},
        {labelled("com.apple agent"),
         "The label \"com.apple agent\" contains characters Brell does not pass to launchctl."},
        {record("homebrew.mxcl.postgresql@16.plist"),
         "The label \"homebrew.mxcl.postgresql@16\" contains characters Brell does not pass to launchctl."},
        {record("com.apple.cleanup-helper.plist"),
         "com.apple.cleanup-helper is an Apple or Brell item; it is never changed."},
        {labelled("com.corvane.brell"), "com.corvane.brell is an Apple or Brell item; it is never changed."},
        {linked,
         linked.plist.path +
             " is a link to ../../Dotfiles/io.quillmark.backup.plist, not a file directly inside your "
             "LaunchAgents folder."},
        {with([&](LaunchAgentRecord& record) { record.plist = LaunchAgentPlist::read(linked.plist.path); }),
         notDirectlyInside(mac.home() / "Dotfiles/io.quillmark.backup.plist")},
        {at(sibling), notDirectlyInside(sibling)},
        {at(otherSuffix), notDirectlyInside(otherSuffix)},
        {labelled("com.example.other"),
         "The plist's Label (homebrew.mxcl.redis) does not match com.example.other."},
    };
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
    EXPECT_EQ(notOn(plain),
              plain +
                  " was changed outside Brell (launchd shows enabled, loaded); restore it from the "
                  "Journal first.");
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

TEST_F(AgentToggleTest, SwitchesAFileThatIsNamedBySuffixAlone) {
    setContents(mac.launchAgents() / ".plist", jobFile("com.example.dot"));
    toggle.turnOff(record(".plist"));
    EXPECT_EQ(stateOf("com.example.dot"), "disabled, not loaded");
}

TEST_F(AgentToggleTest, ShowsTheCommandsBeforehand) {
    const std::string service = "gui/501/" + plain;
    const std::string enable = "/bin/launchctl enable " + service;
    const std::string disable = "/bin/launchctl disable " + service;
    const std::string bootout = "/bin/launchctl bootout " + service;
    const auto loading = [](const fs::path& file) {
        return AllowedCommand::launchctlBootstrap("gui/501", file.string()).rendered();
    };
    const std::string bootstrap = loading(fileOf(plain));
    using Lines = std::vector<std::string>;
    EXPECT_EQ(toggle.previewOff(agent(plain)), (Lines{bootout, disable}));
    EXPECT_EQ(toggle.previewOn(agent(plain)), (Lines{enable, bootstrap}));

    const auto restoring = [&](bool wasLoaded, AgentOverride override) {
        return toggle.previewRestore({plain, fileOf(plain).string(), wasLoaded, override});
    };
    EXPECT_EQ(restoring(true, AgentOverride::absent),
              (Lines{enable, bootstrap + " (only if it is not loaded)"}));
    EXPECT_EQ(restoring(false, AgentOverride::enabled), (Lines{enable, bootout + " (only if it is loaded)"}));
    EXPECT_EQ(restoring(false, AgentOverride::disabled), (Lines{bootout, disable}));
    EXPECT_EQ(
        restoring(true, AgentOverride::disabled),
        (Lines{enable + " (only if it is not loaded)", bootstrap + " (only if it is not loaded)", disable}));

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
    EXPECT_EQ(toggle.previewRestore(*off.agent).back(), loading(renamed) + " (only if it is not loaded)");
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
    EXPECT_EQ(
        notOff(label),
        label + " was changed outside Brell since Brell turned it off; restore it from the Journal first.");

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
    EXPECT_EQ(
        notOn(label),
        label + " was changed outside Brell since Brell turned it on; restore it from the Journal first.");

    bootout(label);
    EXPECT_EQ(notOff(label),
              label +
                  " was changed outside Brell (launchd shows enabled, not loaded); restore it from the "
                  "Journal first.");
    bootstrap(fileOf(label));
    EXPECT_EQ(toggle.turnOff(agent(label)).id, on.id);
    EXPECT_EQ(stateOf(label), "disabled, not loaded");
}

}  // namespace
}  // namespace brell
