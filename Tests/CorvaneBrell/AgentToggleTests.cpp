#include <gtest/gtest.h>

#include <thread>
#include <tuple>

#include "BrellCore/Background/RunProcess.h"
#include "BrellCore/Support/FileLock.h"
#include "Tests/CorvaneBrell/AgentToggleFixture.h"
#include "Tests/Support/SystemCalls.h"

namespace fs = std::filesystem;

namespace brell {
namespace {

using namespace testing;
using namespace std::chrono_literals;

class AgentToggleTest : public ::testing::Test, protected AgentToggleFixture {
protected:
    // What a toggle that dies right after its first step leaves behind.
    JournalEntry interruptedTurningOff(const std::string& label) {
        const AgentState before = toggle.currentState(label);
        JournalEntry entry = engine
                                 .beginAgentChange(label, {label, fileOf(label).string(),
                                                           before.loaded.isLoaded(), before.override})
                                 .entry;
        tools->run(AllowedCommand::launchctlBootout("gui/501", label));
        return entry;
    }

    // What a journal may claim that nobody did.
    Uuid claimed(const AgentCapture& capture) {
        now += 1s;
        return engine
            .finishAgentChange(engine.beginAgentChange(capture.label, capture), EntryStatus::applied, {})
            .id;
    }
    std::string launchdState() const { return contentsOf(SimulatedLaunchd::stateFile(mac.systemRoot())); }

    const std::string plain = "homebrew.mxcl.redis";
};

// A file that is there and can't be opened.
class ClosedFile final : CallObserver {
public:
    explicit ClosedFile(const fs::path& file) : CallObserver(file) { start(); }
    ~ClosedFile() override { stop(); }

private:
    int sees(SystemCall call, const std::string&) override { return call == SystemCall::open ? EACCES : 0; }
};

std::string jobFile(const std::string& label) {
    return "<plist version=\"1.0\"><dict><key>Label</key><string>" + label + "</string></dict></plist>";
}

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
    EXPECT_EQ(namesIn(journalDirectory), Names{});
}

TEST_F(AgentToggleTest, RefusesAFileThatWasReplacedSinceItWasListed) {
    const LaunchAgentRecord listed = agent(plain);
    setContents(fileOf(plain), "not a job");
    EXPECT_EQ(messageOf([&] { toggle.turnOff(listed); }),
              "The plist's Label (none) does not match homebrew.mxcl.redis.");
    EXPECT_EQ(stateOf(plain), "absent, loaded");
}

TEST_F(AgentToggleTest, RefusesASwitchThatStandsThatWayAlreadyAndLeavesNothingBehind) {
    const std::string launchdBefore = launchdState();
    EXPECT_EQ(messageOf([&] { toggle.turnOff(agent("com.spotify.client.startuphelper")); }),
              "com.spotify.client.startuphelper is already turned off.");
    EXPECT_EQ(messageOf([&] { toggle.turnOff(agent("com.tallowgate.agent")); }),
              "com.tallowgate.agent is already turned off, and runs until it ends or you log out.");
    for (const char* label : {"homebrew.mxcl.redis", "us.zoom.updater", "org.fernwright.notes"})
        EXPECT_EQ(messageOf([&] { toggle.turnOn(agent(label)); }),
                  std::string(label) + " is not turned off.");
    EXPECT_EQ(launchdState(), launchdBefore);
    EXPECT_EQ(namesIn(journalDirectory), std::set<std::string>{});
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
    EXPECT_EQ(namesIn(journalDirectory), std::set<std::string>{});
}

TEST_F(AgentToggleTest, NeverTakesAnotherFileWithTheSameLabelForTheAgent) {
    const std::string file = fileOf(plain).string();
    const std::string twin = (mac.launchAgents() / "twin.plist").string();
    setContents(twin, jobFile(plain));
    const auto loadTwin = [&, other = std::shared_ptr(mac.openTools())] {
        other->run(AllowedCommand::launchctlEnable("gui/501", plain));
        other->run(AllowedCommand::launchctlBootstrap("gui/501", twin));
    };
    EXPECT_EQ(messageOf([&] { toggle.turnOff(record("twin.plist")); }),
              plain + " is loaded from " + file + ", not from " + twin + "; it is not changed.");
    EXPECT_EQ(namesIn(journalDirectory), std::set<std::string>{});

    const JournalEntry off = toggle.turnOff(agent(plain));
    loadTwin();
    EXPECT_EQ(messageOf([&] { toggle.turnOn(agent(plain)); }),
              plain +
                  " was changed outside Brell (launchd shows enabled, loaded); restore it from the "
                  "Journal first.");
    EXPECT_EQ(engine.restore(off.id, false).status, EntryStatus::restored) << "what is there now is left";
    EXPECT_EQ(toggle.currentState(plain).loaded.path, twin);

    tools->run(AllowedCommand::launchctlBootout("gui/501", plain));
    tools->run(AllowedCommand::launchctlDisable("gui/501", plain));
    const JournalEntry on = toggle.turnOn(agent(plain));
    tools->run(AllowedCommand::launchctlBootout("gui/501", plain));
    loadTwin();
    EXPECT_EQ(messageOf([&] { toggle.turnOff(agent(plain)); }),
              plain + " is loaded from " + twin + ", not from " + file + "; it is not changed.");
    EXPECT_EQ(journal.active(), std::vector{on});
}

TEST_F(AgentToggleTest, SwitchesAFileThatIsNamedBySuffixAlone) {
    setContents(mac.launchAgents() / ".plist", jobFile("com.example.dot"));
    toggle.turnOff(record(".plist"));
    EXPECT_EQ(stateOf("com.example.dot"), "disabled, not loaded");
}

TEST_F(AgentToggleTest, ALabelWithQuotesIsReadAsItIsAndNotSwitched) {
    const std::string odd = "a \"quoted\" => enabled";
    setContents(mac.launchAgents() / "odd.plist", jobFile("a \"quoted\" =&gt; enabled"));
    tools->launchd().run(AllowedCommand::launchctlDisable("gui/501", odd));
    EXPECT_EQ(record("odd.plist").label(), odd);
    EXPECT_EQ(record("odd.plist").override, AgentOverride::disabled);
    EXPECT_EQ(messageOf([&] { toggle.turnOn(record("odd.plist")); }),
              "The label \"" + odd + "\" contains characters Brell does not pass to launchctl.");
}

TEST_F(AgentToggleTest, ShowsTheCommandsBeforehand) {
    const std::string service = "gui/501/" + plain;
    const std::string enable = "/bin/launchctl enable " + service;
    const std::string disable = "/bin/launchctl disable " + service;
    const std::string bootout = "/bin/launchctl bootout " + service;
    const std::string bootstrap = "/bin/launchctl bootstrap gui/501 " + fileOf(plain).string();
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
    EXPECT_EQ(messageOf([&] { toggle.previewOff(agent(plain)); }),
              messageOf([&] { toggle.turnOff(agent(plain)); }));
    const JournalEntry on = toggle.turnOn(agent("com.spotify.client.startuphelper"));
    EXPECT_EQ(toggle.preview(agent(on.agent->label), AgentSwitch::off),
              (AgentPreview{toggle.previewRestore(*on.agent), {true, false}}));
    interruptedTurningOff("com.lumenfold.sync");
    EXPECT_EQ(messageOf([&] { toggle.previewOn(agent("com.lumenfold.sync")); }),
              "com.lumenfold.sync has an interrupted change; restore it from the Journal first.");

    const fs::path renamed = mac.launchAgents() / "renamed.plist";
    fs::rename(fileOf(plain), renamed);
    EXPECT_EQ(toggle.previewRestore(*off.agent).back(),
              "/bin/launchctl bootstrap gui/501 " + renamed.string() + " (only if it is not loaded)");
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
        messageOf([&] { toggle.turnOff(agent(label)); }),
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
        messageOf([&] { toggle.turnOn(agent(label)); }),
        label + " was changed outside Brell since Brell turned it on; restore it from the Journal first.");

    tools->run(AllowedCommand::launchctlBootout("gui/501", label));
    EXPECT_EQ(messageOf([&] { toggle.turnOff(agent(label)); }),
              label +
                  " was changed outside Brell (launchd shows enabled, not loaded); restore it from the "
                  "Journal first.");
    tools->run(AllowedCommand::launchctlBootstrap("gui/501", fileOf(label).string()));
    EXPECT_EQ(toggle.turnOff(agent(label)).id, on.id);
    EXPECT_EQ(stateOf(label), "disabled, not loaded");
}

TEST_F(AgentToggleTest, WaitsAsLongAsLaunchdGivesAJobToEnd) {
    std::vector<std::string> told;
    toggle.setWaitingHook([&](const std::string& label, std::chrono::seconds atMost) {
        told.push_back(label + " " + std::to_string(atMost.count()));
    });
    tools->launchd().setManner(plain, {40, 36, 37, {}, 8});  // 8 seconds
    toggle.turnOff(agent(plain));
    EXPECT_EQ(told, std::vector{plain + " 13"});
    EXPECT_EQ(stateOf(plain), "disabled, not loaded");

    const std::string turnedOn = "com.spotify.client.startuphelper";
    tools->launchd().setManner(turnedOn, {40, 0, 37, {}, 8});
    toggle.turnOn(agent(turnedOn));
    EXPECT_EQ(toggle.turnOff(agent(turnedOn)).status, EntryStatus::restored);

    const std::string unlimited = "com.halverson.duskwatch";
    tools->launchd().setManner(unlimited, {140, 0, 37, {}, 0});
    toggle.turnOff(agent(unlimited));
    EXPECT_EQ(told.back(), unlimited + " 30");
}

TEST_F(AgentToggleTest, AJobThatOutlivesItsTimeStaysInterrupted) {
    tools->launchd().setManner(plain, {500, 0, 37, {}, 60});
    const auto error = thrownBy<AgentToggleError>([&] { toggle.turnOff(agent(plain)); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->failure(), (AgentToggleFailure{AgentToggleProblem::verifyFailed,
                                                    plain + " is loaded, expected not loaded"}));
    // As long for the way back, before it is looked at and while it is under way, and no longer.
    EXPECT_GE(time.slept, 60s);
    EXPECT_LE(time.slept, 120s);
    const auto entry = journal.activeEntry("agent:" + plain);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->status, EntryStatus::capturing);
    EXPECT_TRUE(entry->failure->starts_with(error->what() + std::string(". After the change, launchd ")))
        << *entry->failure;
    EXPECT_EQ(messageOf([&] { toggle.turnOn(agent(plain)); }),
              plain + " has an interrupted change; restore it from the Journal first.");

    const std::string other = "com.lumenfold.sync";
    tools->launchd().setManner(other, {200, 0, 37, {}});
    tools->run(AllowedCommand::launchctlBootout("gui/501", other));
    const std::size_t historyBefore = journal.history().size();
    EXPECT_EQ(messageOf([&] { toggle.turnOff(agent(other)); }),
              other + " is about to end; try again when it has.");
    EXPECT_EQ(journal.all().size(), 1u);
    EXPECT_EQ(journal.history().size(), historyBefore);

    EXPECT_EQ(stateOf(plain), "enabled, not loaded");  // gone at last
    EXPECT_EQ(engine.recoverInterrupted().restored, std::vector{entry->id});
    EXPECT_EQ(stateOf(plain), "enabled, loaded");
}

TEST_F(AgentToggleTest, ASwitchIsDoneWhenLaunchdShowsIt) {
    toggle.setWaitingHook([](const std::string& label, auto) { ADD_FAILURE() << label << " is not ending"; });
    const std::string off = "com.spotify.client.startuphelper";
    for (const auto lying :
         {AllowedCommand::Kind::launchctlEnable, AllowedCommand::Kind::launchctlBootstrap}) {
        const bool isEnable = lying == AllowedCommand::Kind::launchctlEnable;
        const std::string label = isEnable ? "com.tallowgate.agent" : off;  // the first is loaded already
        tools->failNext(lying, ToolFault::lying());
        EXPECT_EQ(
            messageOf([&] { toggle.turnOn(agent(label)); }),
            "After the change, launchd reports something else: " + label +
                (isEnable ? " override is disabled, expected enabled" : " is not loaded, expected loaded"));
        EXPECT_EQ(journal.all().back().status, EntryStatus::failed);
    }
}

TEST_F(AgentToggleTest, AJobThatIsStillLeavingIsNotTakenForPutBack) {
    tools->launchd().setManner(plain, {200, 0, 37, {}});
    tools->failNext(AllowedCommand::Kind::launchctlDisable, ToolFault::refusing(150, "no"));
    EXPECT_EQ(messageOf([&] { toggle.turnOff(agent(plain)); }),
              "launchctl refused: /bin/launchctl disable gui/501/" + plain + ": no");
    ASSERT_TRUE(journal.activeEntry("agent:" + plain));
    EXPECT_EQ(stateOf(plain), "enabled, not loaded");
    EXPECT_EQ(engine.recoverInterrupted().restored.size(), 1u);
    EXPECT_EQ(stateOf(plain), "enabled, loaded");
}

TEST_F(AgentToggleTest, JudgesABootstrapByWhatLaunchdThenShows) {
    const std::string loadedBefore = "com.tallowgate.agent";  // answered with "File exists"
    EXPECT_EQ(toggle.turnOn(agent(loadedBefore)).status, EntryStatus::applied);
    const std::string loadedAfterAll = "com.spotify.client.startuphelper";
    tools->failNext(AllowedCommand::Kind::launchctlBootstrap, ToolFault::refusingAfterAll(37, "busy"));
    EXPECT_EQ(toggle.turnOn(agent(loadedAfterAll)).status, EntryStatus::applied);

    // Right after a bootout one that is not loaded is tried once more, and only once.
    for (const int failures : {1, 2}) {
        tools->failNext(AllowedCommand::Kind::launchctlDisable, ToolFault::refusing(150, "no"));
        for (int i = 0; i < failures; ++i)
            tools->failNext(AllowedCommand::Kind::launchctlBootstrap, ToolFault::refusing(5, "busy"));
        EXPECT_THROW(toggle.turnOff(agent(plain)), AgentToggleError);
        EXPECT_EQ(journal.all().back().status, failures == 1 ? EntryStatus::failed : EntryStatus::capturing);
        EXPECT_EQ(stateOf(plain), failures == 1 ? "enabled, loaded" : "enabled, not loaded");
    }
}

TEST_F(AgentToggleTest, RestoringLoadsTheFileThatHasTheLabelNowOrSaysThatNoneHas) {
    const std::string renamed = "com.halverson.duskwatch", gone = "com.lumenfold.sync";
    const std::string replaced = "io.verdigris.relay", linked = "us.zoom.updater";
    const std::string neverLoaded = "org.fernwright.notes", goneButLoaded = "com.orrerylabs.telemetry";
    const std::string turnedOn = "com.spotify.client.startuphelper";
    for (const std::string& label : {renamed, gone, replaced, linked, neverLoaded}) {
        now += 1s;
        toggle.turnOff(agent(label));
    }
    toggle.turnOn(agent(turnedOn));
    interruptedTurningOff(goneButLoaded);
    tools->run(AllowedCommand::launchctlBootstrap("gui/501", fileOf(goneButLoaded).string()));
    tools->run(AllowedCommand::launchctlBootout("gui/501", turnedOn));
    for (const std::string& label : {gone, neverLoaded, goneButLoaded, turnedOn}) fs::remove(fileOf(label));
    fs::create_directory(fileOf(neverLoaded));
    fs::rename(fileOf(renamed), mac.launchAgents() / "renamed.plist");
    setContents(fileOf(replaced), jobFile("com.example.other"));
    fs::rename(fileOf(linked), mac.home() / "elsewhere.plist");
    fs::create_symlink(mac.home() / "elsewhere.plist", fileOf(linked));

    // Whether one has it is not known while the file or the folder can't be read.
    if (systemCallsAreWatched()) {
        const ClosedFile closed(fileOf(replaced));
        EXPECT_EQ(messageOf([&] { engine.restore(journal.activeEntry("agent:" + replaced)->id, false); }),
                  "The file " + fileOf(replaced).string() + " could not be read: Permission denied.");
    }
    fs::rename(mac.launchAgents(), mac.home() / "away");
    setContents(mac.launchAgents(), "");
    const std::string unread =
        "Your LaunchAgents folder " + mac.launchAgents().string() + " can't be read: Not a directory.";
    for (const auto& [id, reason] : engine.restoreAll({}).failed) EXPECT_EQ(reason, unread);
    EXPECT_EQ(journal.active().size(), 7u);
    fs::remove(mac.launchAgents());
    fs::rename(mac.home() / "away", mac.launchAgents());

    const RestoreAllOutcome outcome = engine.restoreAll({});
    EXPECT_EQ(outcome.failed.size(), 0u);
    EXPECT_EQ(outcome.restored.size(), 7u);
    const auto noFile = [](const std::string& label, const char* end) {
        return "No file in your LaunchAgents folder has the label " + label + " any more, so " + end;
    };
    std::map<std::string, std::optional<std::string>> remarks;
    for (const JournalEntry& entry : journal.all()) remarks[entry.agent->label] = entry.failure;
    std::map<std::string, std::optional<std::string>> expected{
        {turnedOn, noFile(turnedOn, "there was nothing to turn off.")},
        {renamed, {}},
        {neverLoaded, {}},
        {goneButLoaded, {}}};
    for (const std::string& label : {gone, replaced, linked}) {
        expected[label] = noFile(label, "it is allowed again, but there was nothing to load.");
        EXPECT_EQ(stateOf(label), "enabled, not loaded");
    }
    EXPECT_EQ(remarks, expected);
    EXPECT_EQ(toggle.currentState(renamed).loaded.path, mac.launchAgents() / "renamed.plist");
    EXPECT_EQ(stateOf(neverLoaded), "enabled, not loaded");
    EXPECT_EQ(stateOf(goneButLoaded), "enabled, loaded");

    tools->run(AllowedCommand::launchctlDisable("gui/501", turnedOn));  // as it was before Brell
    EXPECT_EQ(toggle.restore({turnedOn, fileOf(turnedOn).string(), false, AgentOverride::disabled}),
              std::nullopt);
}

TEST_F(AgentToggleTest, AForgedJournalSwitchesNothingThatIsNotTheUsers) {
    const std::string admins = "com.halverson.duskwatch.menu", absent = "com.example.absent";
    const std::string adminsFile =
        (mac.systemRoot() / "Library/LaunchAgents/com.halverson.duskwatch.menu.plist").string();
    tools->run(AllowedCommand::launchctlBootstrap("gui/501", adminsFile));
    const std::string launchdBefore = launchdState();
    for (const bool wasLoaded : {false, true})
        for (const AgentOverride override : {AgentOverride::disabled, AgentOverride::enabled}) {
            const Uuid id = claimed({admins, fileOf(admins).string(), wasLoaded, override});
            const bool isSo = wasLoaded && override == AgentOverride::enabled;  // nothing is to be done
            EXPECT_EQ(messageOf([&] { EXPECT_TRUE(engine.restore(id, false).restoredAt && isSo); }),
                      isSo ? ""
                           : admins + " is loaded from " + adminsFile +
                                 ", which is not in your LaunchAgents folder; it is not changed.");
            JournalEntry entry = *journal.entry(id);
            entry.status = EntryStatus::restored;
            journal.upsert(entry);
        }
    claimed({absent, fileOf(absent).string(), false, AgentOverride::disabled});
    claimed({"com.apple.x", fileOf(absent).string(), false, AgentOverride::disabled});
    claimed({"com.example.x", "/Library/LaunchAgents/x.plist", false, AgentOverride::disabled});
    EXPECT_EQ(engine.restoreAll({}).failed.size(), 2u);
    EXPECT_EQ(launchdState(), launchdBefore);

    // With a twin of the user's the override may be changed; the job of others is not ended all the same.
    setContents(fileOf(admins), jobFile(admins));
    const Uuid id = claimed({admins, fileOf(admins).string(), false, AgentOverride::disabled});
    EXPECT_THROW(engine.restore(id, false), AgentToggleError);
    EXPECT_EQ(launchdState(), launchdBefore);
}

TEST_F(AgentToggleTest, LoadsTheFileThatWasCheckedNotALinkToIt) {
    fs::create_symlink(mac.home(), mac.systemRoot() / "alias");
    const fs::path byLink = mac.systemRoot() / "alias/Library/LaunchAgents" / (plain + ".plist");
    setContents(mac.launchAgents() / "another.plist", jobFile(plain));
    tools->run(AllowedCommand::launchctlBootout("gui/501", plain));
    std::vector<std::string> loaded;
    tools->interfere([&](const AllowedCommand& command) -> std::optional<ToolFault> {
        if (command.kind == AllowedCommand::Kind::launchctlBootstrap) loaded.push_back(command.item);
        return std::nullopt;
    });
    EXPECT_EQ(toggle.restore({plain, byLink.string(), true, AgentOverride::enabled}), std::nullopt);
    EXPECT_EQ(loaded, std::vector{fileOf(plain).string()});
}

TEST_F(AgentToggleTest, AFileThatWasRenamedWhileItsJobRanIsTheSameAgent) {
    const fs::path renamed = mac.launchAgents() / "renamed.plist";
    fs::rename(fileOf(plain), renamed);
    EXPECT_EQ(toggle.whyNotSwitched(record("renamed.plist")), std::nullopt);
    const JournalEntry off = toggle.turnOff(record("renamed.plist"));
    EXPECT_EQ(off.agent->plistPath, renamed);
    engine.restore(off.id, false);
    EXPECT_EQ(stateOf(plain), "enabled, loaded");
}

// What else happens while an agent is switched: late commands, other processes, files that are replaced.

TEST_F(AgentToggleTest, AStoppedProcessThatSetOffMoreIsUndoneByRecovery) {
    const std::string root = mac.systemRoot().string();
    for (const auto& [kind, word, done] :
         {std::tuple(AllowedCommand::Kind::launchctlBootout, "bootout", ", not loaded"),
          std::tuple(AllowedCommand::Kind::launchctlDisable, "disable", "disabled, loaded")}) {
        const fs::path go = folder.path / (std::string("go ") + word);
        const std::string late = "(while [ -d '" + root + "' ] && [ ! -e '" + go.string() +
                                 "' ]; do sleep 0.05; done; BRELL_SAMPLE_MAC='" + root +
                                 "' '" BRELL_LAUNCHCTL "' " + word + " gui/501/" + plain +
                                 ") >/dev/null 2>&1 & exec sleep 60";
        tools->interfere([&, kind = kind](const AllowedCommand& command) -> std::optional<ToolFault> {
            if (command.kind != kind) return std::nullopt;
            const auto ended = runProcess("/bin/sh", {"-c", late}, 0.1);
            const auto* problem = std::get_if<CommandProblem>(&ended);
            EXPECT_TRUE(problem && *problem == CommandProblem::timedOut);
            return ToolFault::hanging();
        });
        const std::string message = messageOf([&] { toggle.turnOff(agent(plain)); });
        tools->interfere({});
        const auto entry = journal.activeEntry("agent:" + plain);
        ASSERT_TRUE(entry) << message;
        EXPECT_EQ(entry->status, EntryStatus::capturing);
        EXPECT_EQ(entry->failure, message + " The stopped command may still take effect.");

        setContents(go, "");
        while (!stateOf(plain).ends_with(done)) std::this_thread::sleep_for(10ms);
        EXPECT_EQ(engine.recoverInterrupted().restored, std::vector{entry->id});
        EXPECT_EQ(stateOf(plain), "enabled, loaded");
    }
}

TEST_F(AgentToggleTest, TheCaptureIsMadeUnderTheLock) {
    const LaunchAgentRecord record = agent(plain);
    const auto otherTools = mac.openTools();
    int asked = 0;
    tools->interfere([&](const AllowedCommand&) -> std::optional<ToolFault> {
        if (++asked != 3) return std::nullopt;  // the first two are asked before the lock is taken
        EXPECT_FALSE(FileLock::acquire(journalDirectory / ".journal.lock", std::chrono::milliseconds(0)));
        otherTools->run(AllowedCommand::launchctlBootout("gui/501", plain));  // somebody who knows no lock
        return std::nullopt;
    });
    EXPECT_EQ(toggle.turnOff(record).agent,
              (AgentCapture{plain, fileOf(plain).string(), false, AgentOverride::absent}));
}

TEST_F(AgentToggleTest, AnAgentThatIsSwitchedWhileTheLockIsWaitedForIsNotOverwritten) {
    const JournalEntry off = toggle.turnOff(agent(plain));
    const LaunchAgentRecord record = agent(plain);
    const auto otherTools = mac.openTools();
    int asked = 0;
    tools->interfere([&](const AllowedCommand&) -> std::optional<ToolFault> {
        if (++asked == 3) otherTools->run(AllowedCommand::launchctlEnable("gui/501", plain));
        return std::nullopt;
    });
    EXPECT_EQ(messageOf([&] { toggle.turnOn(record); }),
              plain +
                  " was changed outside Brell (launchd shows enabled, not loaded); restore it from the "
                  "Journal first.");
    EXPECT_EQ(journal.active(), std::vector{off});
    EXPECT_EQ(stateOf(plain), "enabled, not loaded");
}

TEST_F(AgentToggleTest, AFileThatWasReplacedIsNeverLoadedInItsPlace) {
    const LaunchAgentRecord record = agent(plain);
    const std::string foreign = "com.example.other";
    const fs::path file = fileOf(plain);
    const std::string fileContents = contentsOf(file);
    const std::string noFile = "No file in your LaunchAgents folder has the label " + plain +
                               " any more, so it is allowed again, but there was nothing to load.";
    tools->interfere([&](const AllowedCommand& command) -> std::optional<ToolFault> {
        if (command.kind != AllowedCommand::Kind::launchctlDisable) return std::nullopt;
        setContents(file, jobFile(foreign));
        return ToolFault::refusing(150, "no");
    });
    const std::string message = messageOf([&] { toggle.turnOff(record); });
    tools->interfere({});
    const auto entry = journal.activeEntry("agent:" + plain);
    ASSERT_TRUE(entry) << message;
    EXPECT_EQ(entry->failure, message + ". " + noFile);
    EXPECT_EQ(stateOf(foreign), "absent, not loaded");
    setContents(file, fileContents);
    EXPECT_EQ(engine.recoverInterrupted().restored, std::vector{entry->id});

    // The job takes longer to go than it is waited for: it is not missing yet, then it is.
    tools->launchd().setManner(plain, {80, 0, 37, {}});
    tools->run(AllowedCommand::launchctlBootout("gui/501", plain));
    setContents(file, jobFile(foreign));
    const auto restore = [&] { return toggle.restore({plain, file.string(), true, AgentOverride::enabled}); };
    EXPECT_EQ(messageOf(restore), "After the change, launchd reports something else: " + plain +
                                      " is not loaded, expected loaded");
    EXPECT_EQ(restore(), noFile);
    EXPECT_EQ(stateOf(foreign), "absent, not loaded");
}

}  // namespace
}  // namespace brell
