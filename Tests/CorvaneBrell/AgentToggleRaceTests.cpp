// What else happens while an agent is switched: other processes, late commands, files that are replaced.

#include <gtest/gtest.h>

#include "BrellCore/Support/FileLock.h"
#include "Tests/CorvaneBrell/AgentToggleFixture.h"

namespace brell {
namespace {

using testing::contentsOf;
using testing::messageOf;
using testing::setContents;
using Kind = AllowedCommand::Kind;

class AgentToggleRaceTest : public ::testing::Test, protected testing::AgentToggleFixture {
protected:
    // The agent's file now is the job of another label.
    void replaceFile() {
        setContents(file, "<plist version=\"1.0\"><dict><key>Label</key><string>" + foreign +
                              "</string></dict></plist>");
    }

    const std::string plain = "homebrew.mxcl.redis";
    const std::string foreign = "com.example.other";
    const std::filesystem::path file = fileOf(plain);
    const std::string fileContents = contentsOf(file);
};

TEST_F(AgentToggleRaceTest, AStoppedCommandThatActsLateIsUndoneByRecovery) {
    for (const AllowedCommand& late : {AllowedCommand::launchctlBootout("gui/501", plain),
                                       AllowedCommand::launchctlDisable("gui/501", plain)}) {
        tools->failNext(late.kind, ToolFault::hanging());
        const std::string message = messageOf([&] { toggle.turnOff(agent(plain)); });
        EXPECT_TRUE(stateOf(plain).ends_with(", loaded")) << stateOf(plain);  // put back as far as it goes
        const auto entry = journal.activeEntry("agent:" + plain);
        ASSERT_TRUE(entry) << message;
        EXPECT_EQ(entry->status, EntryStatus::capturing);
        EXPECT_EQ(entry->failure, message + " The stopped command may still take effect.");

        tools->run(late);
        EXPECT_EQ(engine.recoverInterrupted().restored, std::vector{entry->id});
        EXPECT_EQ(stateOf(plain), "enabled, loaded");
    }
}

TEST_F(AgentToggleRaceTest, TheCaptureIsMadeUnderTheLock) {
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
              (AgentCapture{plain, file.string(), false, AgentOverride::absent}));
}

TEST_F(AgentToggleRaceTest, AnAgentThatIsSwitchedWhileTheLockIsWaitedForIsNotOverwritten) {
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

TEST_F(AgentToggleRaceTest, AFileThatWasReplacedIsNeverLoadedInItsPlace) {
    const LaunchAgentRecord record = agent(plain);
    const std::string mismatch = "The plist's Label (" + foreign + ") does not match " + plain + ".";
    tools->interfere([&](const AllowedCommand& command) -> std::optional<ToolFault> {
        if (command.kind != Kind::launchctlDisable) return std::nullopt;
        replaceFile();
        return ToolFault::refusing(150, "no");
    });
    const std::string message = messageOf([&] { toggle.turnOff(record); });
    tools->interfere({});
    const auto entry = journal.activeEntry("agent:" + plain);
    ASSERT_TRUE(entry) << message;
    EXPECT_EQ(entry->failure, message + " " + mismatch);
    EXPECT_EQ(stateOf(foreign), "absent, not loaded");
    setContents(file, fileContents);
    EXPECT_EQ(engine.recoverInterrupted().restored, std::vector{entry->id});

    // The job takes longer to go than it is waited for: it is not missing yet, then it is.
    tools->launchd().setManner(plain, {40, 0, 37, {}});
    tools->run(AllowedCommand::launchctlBootout("gui/501", plain));
    replaceFile();
    const auto restore = [&] { toggle.restore({plain, file.string(), true, AgentOverride::enabled}); };
    EXPECT_EQ(messageOf(restore), "After the change, launchd reports something else: " + plain +
                                      " is not loaded, expected loaded");
    EXPECT_EQ(messageOf(restore), mismatch);
    EXPECT_EQ(stateOf(foreign), "absent, not loaded");
}

}  // namespace
}  // namespace brell
