#include "CorvaneBrell/SampleMac/SampleMac.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "BrellCore/Background/BTMReader.h"
#include "BrellCore/Background/LoginItems.h"
#include "BrellCore/Review/Spotlight.h"
#include "Tests/Support/Testing.h"

namespace fs = std::filesystem;

namespace brell {
namespace {

using namespace testing;
using Command = AllowedCommand;

struct SampleMacTest : ::testing::Test {
    std::string ask(const Command& command) { return tools->run(command).stdoutText; }
    std::pair<int, std::string> change(const Command& command) {
        const CommandResult result = tools->run(command);
        EXPECT_EQ(result.stdoutText, "");
        return {result.exitCode, result.stderrText};
    }
    LoadedState loaded(const std::string& label) {
        return LaunchctlParser::parsePrint(tools->run(Command::launchctlPrint("gui/501/" + label)));
    }
    std::string fileOf(const std::string& label) const {
        return (mac.launchAgents() / (label + ".plist")).string();
    }

    TemporaryFolder folder;
    SampleMac mac{folder.path / "mac"};
    std::unique_ptr<SimulatedTools> tools = mac.openTools();
};

// Toggleable, admin only or in the system's settings; on or off; allowed or not, if that is known.
std::string stateOf(const LoginItemRow& row) {
    const std::string allowed = row.allowedInSystemSettings ? *row.allowedInSystemSettings ? "y" : "n" : "?";
    return std::string(1, "tas"[static_cast<int>(row.badge)]) + (row.isOn ? "1" : "0") + allowed;
}

TEST_F(SampleMacTest, HasAnItemForEveryStateThatTheListCanShow) {
    const LaunchAgentReader reader{*tools, mac.home(), SampleMac::uid, mac.systemRoot()};
    const BTMDump dump = BTMReader{*tools, [] { return SampleMac::isAdmin; }}.dump().value();
    const auto rows =
        LoginItemsMerger::merge(reader.userAgents(), reader.systemAgents(), &dump, SampleMac::uid);
    std::set<std::string> states;
    for (const LoginItemRow& row : rows) states.insert(stateOf(row));
    EXPECT_EQ(states, (Names{"t0?", "t0y", "t1?", "t1y", "a0y", "a1?", "a1n", "a1y", "s1?", "s1n", "s1y"}));
    EXPECT_EQ(rows.size(), 25u);
    EXPECT_TRUE(std::any_of(rows.begin(), rows.end(), [](const auto& row) { return row.isCrashLooping; }));
    EXPECT_EQ(fs::status(mac.systemRoot()).permissions(), fs::perms::owner_all);
}

TEST_F(SampleMacTest, HasVolumesInEveryStateOfTheIndex) {
    std::set<std::optional<bool>> states;
    const auto volumes = SpotlightStatusReader::mountedVolumes(mac.systemRoot());
    for (const auto& volume : SpotlightStatusReader{*tools}.statuses(volumes)) states.insert(volume.indexing);
    EXPECT_EQ(states, (std::set<std::optional<bool>>{std::nullopt, false, true}));
}

TEST_F(SampleMacTest, AnswersLikeLaunchctl) {
    const std::string on = "homebrew.mxcl.redis";
    const std::string off = "com.spotify.client.startuphelper";
    const auto bootstrap = [&](const std::string& file) {
        return change(Command::launchctlBootstrap("gui/501", file));
    };
    const auto bootout = [&](const std::string& label) {
        return change(Command::launchctlBootout("gui/501", label));
    };
    const std::pair<int, std::string> done{0, ""};
    const std::pair<int, std::string> inputOutput{5, "Bootstrap failed: 5: Input/output error\n"};

    EXPECT_EQ(bootstrap(fileOf(on)), (std::pair{17, std::string("Bootstrap failed: 17: File exists\n")}));
    EXPECT_EQ(bootstrap(fileOf(off)), inputOutput);
    EXPECT_EQ(bootstrap(fileOf("com.example.missing")), inputOutput);
    EXPECT_EQ(bootstrap(fileOf("org.millrace.feeds")), inputOutput);
    EXPECT_EQ(bootstrap("/Library/LaunchAgents/of.another.mac.plist"), inputOutput);
    EXPECT_EQ(bootout(off), (std::pair{3, std::string("Boot-out failed: 3: No such process\n")}));
    EXPECT_EQ(
        tools->run(Command::launchctlPrint("gui/501/" + off)),
        (CommandResult{
            113, "", "Bad request.\nCould not find service \"" + off + "\" in domain for user gui: 501\n"}));

    EXPECT_EQ(change(Command::launchctlDisable("gui/501", on)), done);
    EXPECT_TRUE(loaded(on).isLoaded());
    EXPECT_EQ(bootout(on), done);
    EXPECT_EQ(bootstrap(fileOf(on)), inputOutput);
    EXPECT_EQ(change(Command::launchctlEnable("gui/501", on)), done);
    EXPECT_EQ(bootstrap(fileOf(on)), done);
    EXPECT_EQ(loaded(on).runs, 1);
    EXPECT_EQ(LaunchctlParser::parsePrintDisabled(ask(Command::launchctlPrintDisabled("gui/501"))).at(on),
              AgentOverride::enabled);

    EXPECT_EQ(messageOf([&] { tools->run(Command::launchctlEnable("gui/501", "two words")); }),
              "Refused to run a command with an invalid label two words.");
}

TEST_F(SampleMacTest, ASlowJobStaysListedForItsNumberOfAsks) {
    const std::string slow = "com.pebblewick.indexer";
    EXPECT_EQ(change(Command::launchctlBootout("gui/501", slow)),
              (std::pair{36, std::string("Boot-out failed: 36: Operation now in progress\n")}));
    for (int ask = 0; ask < 6; ++ask) {
        EXPECT_EQ(loaded(slow).state, "SIGTERMed") << ask;
        EXPECT_EQ(change(Command::launchctlBootstrap("gui/501", fileOf(slow))).first, 5);
        tools = mac.openTools();  // another process asks on
    }
    EXPECT_EQ(loaded(slow), LoadedState::notLoaded());
    EXPECT_EQ(change(Command::launchctlBootstrap("gui/501", fileOf(slow))).first, 0);
    EXPECT_EQ(loaded(slow).state, "running");
}

TEST_F(SampleMacTest, LeavesWhatIsThereAsItIs) {
    change(Command::launchctlBootout("gui/501", "homebrew.mxcl.redis"));
    fs::remove(fileOf("us.zoom.updater"));
    setContents(fileOf("com.google.keystone.agent"), "edited");
    const auto before = everythingIn(mac.systemRoot());
    SampleMac(mac.systemRoot());
    EXPECT_EQ(everythingIn(mac.systemRoot()), before);
    EXPECT_EQ(everythingIn(SampleMac(folder.path / "one").systemRoot()),
              everythingIn(SampleMac(folder.path / "twin").systemRoot()));

    // One whose filling was broken off gets the rest.
    fs::remove(SimulatedLaunchd::stateFile(folder.path / "one"));
    fs::remove_all(folder.path / "one/Volumes");
    SampleMac(folder.path / "one");
    EXPECT_EQ(everythingIn(folder.path / "one"), everythingIn(folder.path / "twin"));
}

TEST_F(SampleMacTest, IsMadeInNoFolderOfSomethingElse) {
    fs::create_directory(folder.path / "empty");
    EXPECT_NO_THROW(SampleMac(folder.path / "empty"));

    setContents(folder.path / "home/Library/LaunchAgents/mine.plist", "mine");
    const auto before = everythingIn(folder.path);
    for (const char* name : {"home", "home/Library"})
        EXPECT_EQ(messageOf([&] { SampleMac(folder.path / name); }),
                  "The folder " + (folder.path / name).string() +
                      " is no sample Mac and not empty, so that none is made in it.");
    EXPECT_EQ(everythingIn(folder.path), before);
}

TEST_F(SampleMacTest, GoesWrongOnRequest) {
    const std::string label = "homebrew.mxcl.redis";
    const auto disable = Command::launchctlDisable("gui/501", label);
    const auto isDisabled = [&] {
        return ask(Command::launchctlPrintDisabled("gui/501")).find("\"" + label + "\" => disabled") !=
               std::string::npos;
    };
    tools->failNext(disable.kind, ToolFault::lying());
    tools->failNext(disable.kind, ToolFault::hangingAfterwards());
    EXPECT_TRUE(tools->run(disable).succeeded());
    EXPECT_FALSE(isDisabled());
    EXPECT_EQ(messageOf([&] { tools->run(disable); }),
              "The command did not finish in time and was stopped: " + disable.rendered() + ".");
    EXPECT_TRUE(isDisabled());
}

TEST_F(SampleMacTest, SaysThatItsStateIsDamagedAndKeepsIt) {
    const fs::path file = SimulatedLaunchd::stateFile(mac.systemRoot());
    const std::string whole = contentsOf(file);
    std::string otherType = whole;
    otherType.replace(otherType.find("<integer>"), 9, "<string>");
    otherType.replace(otherType.find("</integer>"), 10, "</string>");
    for (const std::string& damaged : {whole.substr(0, whole.size() / 2), std::string(),
                                       std::string("<plist><dict/></plist>"), otherType}) {
        setContents(file, damaged);
        EXPECT_TRUE(messageOf([&] {
                        tools->run(Command::launchctlDisable("gui/501", "a"));
                    }).starts_with("The command could not be started: "));
        EXPECT_EQ(contentsOf(file), damaged);
    }
}

}  // namespace
}  // namespace brell
