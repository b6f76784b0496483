#include "BrellCore/Background/AllowedCommand.h"

#include <gtest/gtest.h>

#include "BrellCore/Background/CommandRunning.h"
#include "Tests/Support/Testing.h"

namespace brell {
namespace {

using Command = AllowedCommand;
using namespace testing;

constexpr auto label = "com.example.agent";
constexpr auto job = "/Users/a/Library/LaunchAgents/x.plist";

TEST(AllowedCommand, FixesExecutableArgumentsAndKindOfEachCommand) {
    struct Row {
        Command command;
        std::string rendered;
        bool isWrite;
    };
    const std::vector<Row> rows{
        {Command::launchctlPrint("gui/501"), "/bin/launchctl print gui/501", false},
        {Command::launchctlPrintDisabled("user/0"), "/bin/launchctl print-disabled user/0", false},
        {Command::launchctlBootout("gui/501", label), "/bin/launchctl bootout gui/501/com.example.agent",
         true},
        {Command::launchctlBootstrap("gui/501", "/Users/jo ann/Library/LaunchAgents/$x.plist"),
         "/bin/launchctl bootstrap gui/501 '/Users/jo ann/Library/LaunchAgents/$x.plist'", true},
        {Command::launchctlEnable("gui/501", label), "/bin/launchctl enable gui/501/com.example.agent", true},
        {Command::launchctlDisable("gui/501", label), "/bin/launchctl disable gui/501/com.example.agent",
         true},
        {Command::mdutilStatus("/Volumes/$x"), "/usr/bin/mdutil -s /Volumes/$x", false},
        {Command::sfltoolDumpBTM(), "/usr/bin/sfltool dumpbtm", false},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.command.rendered(), row.rendered);
        EXPECT_EQ(row.command.isWrite(), row.isWrite) << row.rendered;
        EXPECT_EQ(messageOf([&] { row.command.validate(); }), "") << row.rendered;
    }
}

TEST(AllowedCommand, RefusesEveryArgumentThatIsNotStrictlyOfItsForm) {
    const std::string longLabel(201, 'a');
    const std::string cutShort("/Users/a/Library/LaunchAgents/x\0.plist", 38);
    struct Row {
        Command command;
        std::string refused;  // empty: accepted
    };
    const std::vector<Row> rows{
        {Command::launchctlPrint("gui/501/"), ""},
        {Command::launchctlPrint("gui/501/" + std::string(200, 'a')), ""},
        {Command::launchctlPrint("gui"), "target gui"},
        {Command::launchctlPrint(""), "target "},
        {Command::launchctlPrint("system/0"), "domain system/0"},
        {Command::launchctlPrint("gui/501/my agent"), "label my agent"},
        {Command::launchctlPrint("gui/501/a/b"), "label a/b"},
        {Command::launchctlPrintDisabled("gui/"), "domain gui/"},
        {Command::launchctlPrintDisabled("gui/1234567890"), ""},
        {Command::launchctlPrintDisabled("gui/12345678901"), "domain gui/12345678901"},
        {Command::launchctlPrintDisabled("gui/501\n"), "domain gui/501\n"},
        {Command::launchctlPrintDisabled("gui/-1"), "domain gui/-1"},
        {Command::launchctlBootout("system", "my agent"), "domain system"},
        {Command::launchctlEnable("gui/501", "it's"), "label it's"},
        {Command::launchctlDisable("gui/501", longLabel), "label " + longLabel},
        {Command::launchctlDisable("gui/501", ""), "label "},
        {Command::launchctlBootstrap("gui/501", job), ""},
        {Command::launchctlBootstrap("gui/x", job), "domain gui/x"},
        {Command::launchctlBootstrap("gui/501", "Users/a/Library/LaunchAgents/x.plist"),
         "plist path Users/a/Library/LaunchAgents/x.plist"},
        {Command::launchctlBootstrap("gui/501", "/Users/a/Library/LaunchAgents/../x.plist"),
         "plist path /Users/a/Library/LaunchAgents/../x.plist"},
        {Command::launchctlBootstrap("gui/501", "/Users/a/Library/LaunchAgents/x.PLIST"),
         "plist path /Users/a/Library/LaunchAgents/x.PLIST"},
        {Command::launchctlBootstrap("gui/501", "/tmp/x.plist"), "plist path /tmp/x.plist"},
        {Command::launchctlBootstrap("gui/501", cutShort), "plist path " + cutShort},
        {Command::mdutilStatus("relative/path"), "volume relative/path"},
        {Command::mdutilStatus("/Volumes/../x"), "volume /Volumes/../x"},
    };
    for (const Row& row : rows) {
        const auto failure = failureOf<CommandError>([&] { row.command.validate(); });
        EXPECT_EQ(failure ? failure->detail : "", row.refused) << row.command.rendered();
    }
}

}  // namespace
}  // namespace brell
