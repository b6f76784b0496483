// The fate of a switched agent: the time its job takes to end, the way back, and what others do
// meanwhile.

#include <gtest/gtest.h>
#include <unistd.h>

#include <numeric>

#include "BrellCore/Support/FileLock.h"
#include "Tests/CorvaneBrell/AgentToggleFixture.h"
#include "Tests/Support/SystemCalls.h"

namespace brell {
namespace {

using namespace testing;
using namespace std::chrono_literals;

struct AgentRestoreTest : ::testing::Test, AgentToggleFixture {
    // A claim of a journal that nobody did.
    Uuid claimed(const AgentCapture& capture) {
        now += 1s;
        return engine
            .finishAgentChange(engine.beginAgentChange(capture.label, capture), EntryStatus::applied, {})
            .id;
    }

    // A program that knows no lock does this when launchd is asked for the first time under it.
    void atTheFirstQuestionUnderTheLock(const AllowedCommand& theirs) {
        tools->interfere([this, theirs, done = false](const AllowedCommand&) mutable {
            if (!done && !FileLock::acquire(journalDirectory / ".journal.lock", 0ms)) {
                done = true;
                mac.openTools()->run(theirs);
            }
            return std::optional<ToolFault>();
        });
    }
};

TEST_F(AgentRestoreTest, WaitsAsLongAsLaunchdGivesAJobToEnd) {
    std::vector<std::string> told;
    toggle.setWaitingHook([&](const std::string& label, std::chrono::seconds atMost) {
        told.push_back(label + " " + std::to_string(atMost.count()));
    });
    tools->launchd().setBehaviour(plain, {40, 36, 37, {}, 8});  // 8 seconds
    toggle.turnOff(agent(plain));
    EXPECT_EQ(told, std::vector{plain + " 13"});
    EXPECT_EQ(stateOf(plain), "disabled, not loaded");

    const std::string turnedOn = "com.spotify.client.startuphelper";
    tools->launchd().setBehaviour(turnedOn, {40, 0, 37, {}, 8});
    toggle.turnOn(agent(turnedOn));
    EXPECT_EQ(toggle.turnOff(agent(turnedOn)).status, EntryStatus::restored);

    const std::string unlimited = "com.halverson.duskwatch";
    tools->launchd().setBehaviour(unlimited, {140, 0, 37, {}, 0});
    toggle.turnOff(agent(unlimited));
    EXPECT_EQ(told.back(), unlimited + " 30");
}

TEST_F(AgentRestoreTest, AJobThatOutlivesItsTimeStaysInterrupted) {
    tools->launchd().setBehaviour(plain, {500, 0, 37, {}, 60});
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
    EXPECT_EQ(notOn(plain), plain + " has an interrupted change; restore it from the Journal first.");

    const std::string other = "com.lumenfold.sync";
    tools->launchd().setBehaviour(other, {200, 0, 37, {}});
    bootout(other);
    const std::size_t historyBefore = journal.history().size();
    EXPECT_EQ(notOff(other), other + " is about to end; try again when it has.");
    EXPECT_EQ(journal.all().size(), 1u);
    EXPECT_EQ(journal.history().size(), historyBefore);

    EXPECT_EQ(stateOf(plain), "enabled, not loaded");  // gone at last
    EXPECT_EQ(engine.recoverInterrupted().restored, std::vector{entry->id});
    EXPECT_EQ(stateOf(plain), "enabled, loaded");
}

TEST_F(AgentRestoreTest, ASwitchIsDoneWhenLaunchdShowsIt) {
    toggle.setWaitingHook([](const std::string& label, auto) { ADD_FAILURE() << label << " is not ending"; });
    const std::string off = "com.spotify.client.startuphelper";
    for (const auto lying :
         {AllowedCommand::Kind::launchctlEnable, AllowedCommand::Kind::launchctlBootstrap}) {
        const bool isEnable = lying == AllowedCommand::Kind::launchctlEnable;
        const std::string label = isEnable ? "com.tallowgate.agent" : off;  // the first is loaded already
        tools->failNext(lying, ToolFault::lying());
        EXPECT_EQ(notOn(label), "After the change, launchd reports something else: " + label +
                                    (isEnable ? " override is disabled, expected enabled"
                                              : " is not loaded, expected loaded"));
        EXPECT_EQ(journal.all().back().status, EntryStatus::failed);
    }
    EXPECT_LE(time.slept, 2 * 5s) << "whatever time the first is given to end";
}

TEST_F(AgentRestoreTest, AJobThatIsStillLeavingIsNotTakenForPutBack) {
    tools->launchd().setBehaviour(plain, {200, 0, 37, {}});
    tools->failNext(AllowedCommand::Kind::launchctlDisable, ToolFault::refusing(150, "no"));
    EXPECT_EQ(notOff(plain), "launchctl refused: /bin/launchctl disable gui/501/" + plain + ": no");
    ASSERT_TRUE(journal.activeEntry("agent:" + plain));
    EXPECT_EQ(stateOf(plain), "enabled, not loaded");
    EXPECT_EQ(engine.recoverInterrupted().restored.size(), 1u);
    EXPECT_EQ(stateOf(plain), "enabled, loaded");
}

TEST_F(AgentRestoreTest, JudgesABootstrapByWhatLaunchdThenShows) {
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

TEST_F(AgentRestoreTest, RestoringLoadsTheFileThatHasTheLabelNowOrSaysThatNoneHas) {
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
    bootstrap(fileOf(goneButLoaded));
    bootout(turnedOn);
    for (const std::string& label : {gone, neverLoaded, goneButLoaded, turnedOn}) fs::remove(fileOf(label));
    fs::create_directory(fileOf(neverLoaded));
    fs::rename(fileOf(renamed), mac.launchAgents() / "renamed.plist");
    setContents(fileOf(replaced), jobFile("com.example.other"));
    fs::rename(fileOf(linked), mac.home() / "elsewhere.plist");
    fs::create_symlink(mac.home() / "elsewhere.plist", fileOf(linked));

    // It is not known which has it while a file or the folder can't be read.
    if (systemCallsAreWatched()) {
        const EachCall closed(fileOf(plain), [](SystemCall call, const auto&) {
            return call == SystemCall::open ? EACCES : 0;
        });
        EXPECT_EQ(messageOf([&] { engine.restore(journal.activeEntry("agent:" + replaced)->id, false); }),
                  "The file " + fileOf(plain).string() + " could not be read: Permission denied.");
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
    std::set<std::string> lines;
    for (const JournalEntry& entry : journal.all())
        lines.insert(entry.agent->label + ": " + stateOf(entry.agent->label) + "\n    " +
                     entry.failure.value_or("put back") + "\n");
    EXPECT_EQ(std::accumulate(lines.begin(), lines.end(), std::string()),
              sample("Words/agents-put-back.txt"));
    EXPECT_EQ(toggle.currentState(renamed).loaded.path, mac.launchAgents() / "renamed.plist");

    tools->run(AllowedCommand::launchctlDisable("gui/501", turnedOn));  // as it was before Brell
    EXPECT_EQ(toggle.restore({turnedOn, fileOf(turnedOn).string(), false, AgentOverride::disabled}),
              std::nullopt);
}

TEST_F(AgentRestoreTest, AForgedJournalSwitchesNothingThatIsNotTheUsers) {
    const std::string admins = "com.halverson.duskwatch.menu", absent = "com.example.absent";
    const std::string adminsFile =
        (mac.systemRoot() / "Library/LaunchAgents/com.halverson.duskwatch.menu.plist").string();
    bootstrap(adminsFile);
    const std::string launchdBefore = launchdState();
    for (const bool wasLoaded : {false, true})
        for (const AgentOverride override : {AgentOverride::disabled, AgentOverride::enabled}) {
            const Uuid id = claimed({admins, fileOf(admins).string(), wasLoaded, override});
            const bool isSo = wasLoaded && override == AgentOverride::enabled;  // nothing is to be done
            const std::string why = admins + " is loaded from " + adminsFile +
                                    ", which is not in your LaunchAgents folder; it is not changed.";
            EXPECT_EQ(messageOf([&] { EXPECT_TRUE(engine.restore(id, false).restoredAt && isSo); }),
                      isSo ? "" : why);
            if (isSo) continue;
            JournalEntry entry = *journal.entry(id);
            if (wasLoaded) entry.status = EntryStatus::capturing;
            journal.upsert(entry);
            EXPECT_EQ(engine.keepTheirs(id).failure, "Nothing was switched back. " + why);
        }
    claimed({absent, fileOf(absent).string(), false, AgentOverride::disabled});
    claimed({"com.apple.x", fileOf(absent).string(), false, AgentOverride::disabled});
    const std::string others = "/Library/LaunchAgents/x.plist";  // as if of a home that is root's
    claimed({"com.example.x", others, false, AgentOverride::disabled});
    const auto refused = engine.restoreAll({}).failed;
    EXPECT_EQ(refused.size(), 2u);
    for (const auto& [id, why] : refused)
        EXPECT_EQ(engine.keepTheirs(id).failure, "Nothing was switched back. " + why);
    EXPECT_EQ(launchdState(), launchdBefore);

    // With a twin of the user's the override may be changed; the job of others is not ended all the same.
    setContents(fileOf(admins), jobFile(admins));
    const Uuid id = claimed({admins, fileOf(admins).string(), false, AgentOverride::disabled});
    EXPECT_THROW(engine.restore(id, false), AgentToggleError);
    EXPECT_EQ(launchdState(), launchdBefore);
}

TEST_F(AgentRestoreTest, AFolderThatLaunchctlDoesNotTakeRefusesTheWholeUndo) {
    const Uuid id = toggle.turnOff(agent(plain)).id;
    const std::string launchdBefore = launchdState();
    fs::rename(mac.launchAgents(), mac.home() / "agents");
    fs::create_symlink(mac.home() / "agents", mac.launchAgents());
    AgentToggle linked(*tools, engine, SampleMac::uid, mac.launchAgents(), time.waiting());
    engine.setAgentRestorer(&linked);
    const std::string why = messageOf([&] { engine.restore(id, false); });
    EXPECT_TRUE(why.ends_with("which is no folder Library/LaunchAgents.")) << why;
    EXPECT_EQ(launchdState(), launchdBefore);
    EXPECT_EQ(engine.keepTheirs(id).failure, "Nothing was switched back. " + why);
}

TEST_F(AgentRestoreTest, LoadsTheFileThatWasCheckedNotALinkToIt) {
    fs::create_symlink(mac.home(), mac.systemRoot() / "alias");
    const fs::path byLink = mac.systemRoot() / "alias/Library/LaunchAgents" / (plain + ".plist");
    setContents(mac.launchAgents() / "another.plist", jobFile(plain));
    bootout(plain);
    std::vector<std::string> loaded;
    tools->interfere([&](const AllowedCommand& command) -> std::optional<ToolFault> {
        if (command.kind == AllowedCommand::Kind::launchctlBootstrap) loaded.push_back(command.item);
        return std::nullopt;
    });
    EXPECT_EQ(toggle.restore({plain, byLink.string(), true, AgentOverride::enabled}), std::nullopt);
    EXPECT_EQ(loaded, std::vector{fileOf(plain).string()});
}

TEST_F(AgentRestoreTest, AnAgentIsStillTheUsersWhenTheHomeWasCopiedToAnotherPlace) {
    const Uuid id = toggle.turnOff(agent(plain)).id;
    const fs::path home = mac.systemRoot() / "Users/moved";
    fs::copy(mac.home(), home, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    SimulatedTools movedTools(mac.systemRoot(), ::geteuid());
    AgentToggle moved(movedTools, engine, ::geteuid(), home / "Library/LaunchAgents", time.waiting());
    engine.setAgentRestorer(&moved);
    const fs::path arrived = home / "Library/LaunchAgents" / fileOf(plain).filename();
    fs::remove(arrived);  // not yet
    EXPECT_EQ(messageOf([&] { engine.restore(id, false); }),
              fileOf(plain).string() + " is outside your LaunchAgents folder.");
    fs::copy(fileOf(plain), arrived);
    EXPECT_EQ(engine.restore(id, false).failure, std::nullopt);
    EXPECT_EQ(moved.currentState(plain).loaded.path, arrived);
}

TEST_F(AgentRestoreTest, AFileThatWasRenamedWhileItsJobRanIsTheSameAgent) {
    const fs::path renamed = mac.launchAgents() / "renamed.plist";
    fs::rename(fileOf(plain), renamed);
    EXPECT_EQ(toggle.whyNotSwitched(record("renamed.plist")), std::nullopt);
    const JournalEntry off = toggle.turnOff(record("renamed.plist"));
    EXPECT_EQ(off.agent->plistPath, renamed);
    engine.restore(off.id, false);
    EXPECT_EQ(stateOf(plain), "enabled, loaded");
}

// Other events while an agent is switched: late commands, other processes, files that are replaced.

TEST_F(AgentRestoreTest, AStoppedCommandThatTakesEffectLateIsUndoneByRecovery) {
    for (const AllowedCommand& late : {AllowedCommand::launchctlBootout("gui/501", plain),
                                       AllowedCommand::launchctlDisable("gui/501", plain)}) {
        tools->failNext(late.kind, ToolFault::hanging());
        const std::string message = notOff(plain);
        const auto entry = journal.activeEntry("agent:" + plain);
        ASSERT_TRUE(entry) << message;
        EXPECT_EQ(entry->status, EntryStatus::capturing);
        EXPECT_EQ(entry->failure, message + " The stopped command may still take effect.");
        tools->run(late);
        EXPECT_NE(stateOf(plain), "enabled, loaded");
        EXPECT_EQ(engine.recoverInterrupted().restored, std::vector{entry->id});
        EXPECT_EQ(stateOf(plain), "enabled, loaded");
    }
    tools->failNext(AllowedCommand::Kind::launchctlBootout, ToolFault::hangingAfterwards());
    EXPECT_NE(notOff(plain), "");
    EXPECT_EQ(stateOf(plain), "enabled, loaded") << "it is put back at once";
    EXPECT_EQ(journal.all().back().status, EntryStatus::capturing) << "it may do more";
    EXPECT_EQ(engine.recoverInterrupted().failed.size(), 0u);
}

TEST_F(AgentRestoreTest, TheCaptureIsMadeUnderTheLock) {
    const LaunchAgentRecord record = agent(plain);
    atTheFirstQuestionUnderTheLock(AllowedCommand::launchctlBootout("gui/501", plain));
    EXPECT_EQ(toggle.turnOff(record).agent,
              (AgentCapture{plain, fileOf(plain).string(), false, AgentOverride::absent}));
}

TEST_F(AgentRestoreTest, AnAgentThatIsSwitchedWhileTheLockIsWaitedForIsNotOverwritten) {
    const JournalEntry off = toggle.turnOff(agent(plain));
    const LaunchAgentRecord record = agent(plain);
    atTheFirstQuestionUnderTheLock(AllowedCommand::launchctlEnable("gui/501", plain));
    EXPECT_EQ(notOn(record), changedOutside(plain, "(launchd shows enabled, not loaded)"));
    EXPECT_EQ(journal.active(), std::vector{off});
    EXPECT_EQ(stateOf(plain), "enabled, not loaded");
    EXPECT_EQ(
        engine.keepTheirs(off.id).failure,
        "Nothing was switched back, because another state was kept: launchd shows enabled, not loaded.");
    EXPECT_EQ(journal.active(), std::vector<JournalEntry>());
    EXPECT_EQ(stateOf(plain), "enabled, not loaded");
    EXPECT_EQ(toggle.otherState(toggle.turnOff(agent(plain)).agent.value()), std::nullopt);
}

TEST_F(AgentRestoreTest, AFileThatWasReplacedIsNeverLoadedInItsPlace) {
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
    const std::string message = notOff(record);
    tools->interfere({});
    const auto entry = journal.activeEntry("agent:" + plain);
    ASSERT_TRUE(entry) << message;
    EXPECT_EQ(entry->failure, message + ". " + noFile);
    EXPECT_EQ(stateOf(foreign), "absent, not loaded");
    setContents(file, fileContents);
    EXPECT_EQ(engine.recoverInterrupted().restored, std::vector{entry->id});

    // The job takes longer to go than it is waited for: it is not missing yet, then it is.
    tools->launchd().setBehaviour(plain, {80, 0, 37, {}});
    bootout(plain);
    setContents(file, jobFile(foreign));
    const auto restore = [&] { return toggle.restore({plain, file.string(), true, AgentOverride::enabled}); };
    EXPECT_EQ(messageOf(restore), "After the change, launchd reports something else: " + plain +
                                      " is not loaded, expected loaded");
    EXPECT_EQ(restore(), noFile);
    EXPECT_EQ(stateOf(foreign), "absent, not loaded");
}

}  // namespace
}  // namespace brell
