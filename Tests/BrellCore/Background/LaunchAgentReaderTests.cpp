#include "BrellCore/Background/LaunchAgentReader.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "BrellCore/Background/JobProgram.h"
#include "Tests/Support/FakeCommandRunner.h"
#include "Tests/Support/Testing.h"

namespace brell {
namespace {

using Command = AllowedCommand;
using namespace testing;

struct LaunchAgentReaderTest : ::testing::Test {
    TemporaryFolder folder;
    FakeCommandRunner runner;
    LaunchAgentReader reader{runner, folder.path, 501, folder.path / "system"};
    const fs::path agents = reader.userAgentsDirectory();

    fs::path job(const fs::path& file, const std::string& entries) {
        setContents(file, R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)" + entries +
                              "</dict></plist>");
        return file;
    }
    fs::path labelled(const fs::path& file, const std::string& label) {
        return job(file, "<key>Label</key><string>" + label + "</string>");
    }
    void overridesAre(std::string text) {
        runner.answer(Command::launchctlPrintDisabled("gui/501"), std::move(text));
    }
    // The record of a file that holds no job.
    LaunchAgentPlist onlyPath(const fs::path& file, std::optional<std::uint32_t> owner) {
        LaunchAgentPlist plist;
        plist.path = file.string();
        plist.fileOwnerUID = owner;
        return plist;
    }
};

TEST_F(LaunchAgentReaderTest, ReadsEveryKeyOfAJobAndCountsValuesOfAnotherTypeAsMissing) {
    const fs::path file = folder.path / "a.plist";
    LaunchAgentPlist whole = onlyPath(file, ::getuid()), odd = whole;
    whole.label = "com.example.a";
    whole.arguments = {"/bin/sh", "-c"};
    whole.runAtLoad = whole.keepAlive = whole.isDisabled = whole.hasCalendarInterval = true;
    whole.startInterval = 3600;
    whole.associatedBundleIDs = {"com.example.app"};
    odd.program = "/usr/bin/true";
    odd.isForOtherSessions = true;
    odd.associatedBundleIDs = {"a", "b"};
    const std::tuple<const char*, LaunchAgentPlist, const char*, const char*> rows[] = {
        {"agent-every-key", whole, "/bin/sh", "at login, every 3600 s, on a schedule, kept running"},
        {"agent-other-types", odd, "/usr/bin/true", "on demand"}};
    for (const auto& [name, expected, executable, trigger] : rows) {
        setContents(file, sample("PropertyList/" + std::string(name) + ".plist"));
        const LaunchAgentPlist plist = LaunchAgentPlist::read(file);
        EXPECT_EQ(plist, expected);
        EXPECT_EQ(plist.executable(), executable);
        EXPECT_EQ(plist.trigger(), trigger);
    }
}

TEST_F(LaunchAgentReaderTest, ABrokenFileNeverHidesTheOthers) {
    setContents(agents / "a-broken.plist", "<plist><dict><key>Label</key>");
    setContents(agents / "b-array.plist", "<plist version=\"1.0\"><array/></plist>");
    fs::create_symlink("/nowhere", agents / "f-dangling.plist");
    labelled(agents / "g.plist", "com.example.g");
    labelled(agents / "h.PLIST", "com.example.h");

    std::vector<LaunchAgentPlist> expected;
    for (const char* name : {"a-broken", "b-array"})
        expected.push_back(onlyPath(agents / (std::string(name) + ".plist"), ::getuid()));
    expected.push_back(onlyPath(agents / "f-dangling.plist", std::nullopt));
    expected.push_back(onlyPath(agents / "g.plist", ::getuid()));
    expected.back().label = "com.example.g";
    EXPECT_EQ(LaunchAgentReader::plists(agents), expected);
    EXPECT_EQ(LaunchAgentReader::plists(folder.path / "missing"), std::vector<LaunchAgentPlist>{});
}

TEST_F(LaunchAgentReaderTest, LooksBehindNoLinkThatLeadsOutOfTheUsersFolder) {
    const fs::path behind = labelled(folder.path / "Documents/a.plist", "com.example.behind");
    labelled(agents / "own.plist", "com.example.own");
    fs::create_symlink("own.plist", agents / "beside.plist");
    fs::create_symlink(agents / "own.plist", agents / "besidewhole.plist");
    fs::create_symlink(behind, agents / "out.plist");
    fs::create_symlink("out.plist", agents / "outtwice.plist");
    fs::create_symlink("../LaunchAgents/own.plist", agents / "round.plist");
    overridesAre("\"com.example.behind\" => disabled\n");
    std::map<std::string, std::pair<std::string, std::string>> found;
    for (const LaunchAgentRecord& record : reader.listUserAgents())
        found[fs::path(record.plist.path).stem()] = {record.label().value_or(""), record.plist.trigger()};
    const std::pair<std::string, std::string> own{"com.example.own", "on demand"};
    EXPECT_EQ(found, (decltype(found){{"own", own},
                                      {"beside", own},
                                      {"besidewhole", own},
                                      {"out", {"", "a link to " + behind.string()}},
                                      {"outtwice", {"", "a link to out.plist"}},
                                      {"round", {"", "a link to ../LaunchAgents/own.plist"}}}));
}

TEST_F(LaunchAgentReaderTest, AsksLaunchdAboutEachOfTheUsersAgents) {
    labelled(agents / "a.plist", "com.example.off");
    labelled(agents / "b.plist", "com.example.running");
    labelled(agents / "c.plist", "not a label");
    labelled(agents / "d.plist", "");
    labelled(agents / "e.plist", "com.example.slow");
    job(agents / "f.plist", "");
    job(agents / "g.plist", R"(<key>Label</key><string>com.example.unseen</string>
                               <key>LimitLoadToSessionType</key><array><string>Background</string></array>)");
    overridesAre("\"com.example.off\" => disabled\n\"com.example.running\" => enabled\n");
    runner.answer(Command::launchctlPrint("gui/501/com.example.off"),
                  CommandResult{113, "", "Could not find service"});
    runner.answer(Command::launchctlPrint("gui/501/com.example.running"),
                  "x = {\n\tstate = running\n\tpid = 5\n}");
    runner.fail(Command::launchctlPrint("gui/501/com.example.slow"));

    std::vector<LaunchAgentRecord> listed = reader.listUserAgents();
    EXPECT_EQ(runner.commands, std::vector{Command::launchctlPrintDisabled("gui/501")});
    std::vector<std::pair<AgentOverride, LoadedState>> found;
    for (const LaunchAgentRecord& record : reader.userAgents()) {
        EXPECT_EQ(record.scope, AgentScope::user);
        found.emplace_back(record.override, record.loaded);
    }
    const LoadedState running{LoadedState::Kind::loaded, "running", {}, {}, 5};
    const std::pair nothing(AgentOverride::absent, LoadedState::unknown());
    EXPECT_EQ(found, (decltype(found){{AgentOverride::disabled, LoadedState::notLoaded()},
                                      {AgentOverride::enabled, running},
                                      nothing,
                                      nothing,
                                      nothing,
                                      nothing,
                                      nothing}));
    EXPECT_EQ(runner.commands.size(), 5u);  // nothing is run for what launchd can't address
    listed[1].loaded = running;
    EXPECT_EQ(listed[1], reader.userAgents()[1]);
}

TEST_F(LaunchAgentReaderTest, AProgramIsMissingOnlyWhereThatIsSure) {
    const fs::path root = folder.path / "mac", home = root / "Users/sam";
    testing::setContents(root / "opt/there", "");
    fs::create_symlink("gone", root / "opt/dangling");
    fs::create_directories(root / "shut");
    const auto missing = [&](const std::optional<std::string>& program, const std::string& first) {
        LaunchAgentPlist job;
        job.program = program;
        job.arguments = {first};
        return missingProgram(job, root, home);
    };
    // Not known are a name that launchd looks up, and a place that is not looked at.
    for (const Texts& row : sampleRows("Launchctl/programs.txt"))
        EXPECT_EQ(missing(std::nullopt, row[1]).has_value(), row[0] == "missing") << row[1];
    EXPECT_EQ(missing(std::nullopt, ""), std::nullopt);
    EXPECT_EQ(missing("/opt/gone", "/opt/there"), "/opt/gone") << "the program comes first";
    EXPECT_EQ(missing("/opt/there", "/opt/gone"), std::nullopt);
    EXPECT_EQ(missingProgram(LaunchAgentPlist(), root, home), std::nullopt);
    if (::geteuid() == 0) return;  // who may look into every folder
    fs::permissions(root / "shut", fs::perms::none);
    EXPECT_EQ(missing("/shut/gone", ""), std::nullopt);
    fs::permissions(root / "shut", fs::perms::owner_all);
}

TEST_F(LaunchAgentReaderTest, FailsOnlyWhenTheOverridesCannotBeRead) {
    runner.answer(Command::launchctlPrintDisabled("gui/501"),
                  CommandResult{125, "", "Domain does not exist\n"});
    EXPECT_EQ(messageOf([&] { reader.userAgents(); }), "launchctl print-disabled: Domain does not exist");
    runner.fail(Command::launchctlPrintDisabled("gui/501"));
    EXPECT_EQ(messageOf([&] { reader.userAgents(); }),
              "The command did not finish in time and was stopped: /bin/launchctl print-disabled gui/501.");
}

TEST_F(LaunchAgentReaderTest, ListsTheSystemsJobsWithoutAskingLaunchd) {
    const fs::path daemon =
        labelled(folder.path / "system/Library/LaunchDaemons/a.plist", "com.example.daemon");
    const fs::path agent = labelled(folder.path / "system/Library/LaunchAgents/b.plist", "com.example.agent");
    const auto record = [](const fs::path& file, AgentScope scope) {
        return LaunchAgentRecord{LaunchAgentPlist::read(file), scope, AgentOverride::absent,
                                 LoadedState::unknown()};
    };
    EXPECT_EQ(reader.systemAgents(), (std::vector{record(agent, AgentScope::systemAgent),
                                                  record(daemon, AgentScope::systemDaemon)}));
    EXPECT_TRUE(runner.commands.empty());
}

}  // namespace
}  // namespace brell
