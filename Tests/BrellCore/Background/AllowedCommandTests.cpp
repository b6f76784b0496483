#include "BrellCore/Background/AllowedCommand.h"

#include <gtest/gtest.h>

#include "BrellCore/Background/CommandRunning.h"
#include "Tests/Support/Testing.h"

namespace brell {
namespace {

using Command = AllowedCommand;
using namespace testing;

// The first column names the command, the next two are its arguments.
Command commandIn(const Texts& row) {
    if (row[0] == "print") return Command::launchctlPrint(row[1]);
    if (row[0] == "print-disabled") return Command::launchctlPrintDisabled(row[1]);
    if (row[0] == "bootout") return Command::launchctlBootout(row[1], row[2]);
    if (row[0] == "bootstrap") return Command::launchctlBootstrap(row[1], row[2]);
    if (row[0] == "enable") return Command::launchctlEnable(row[1], row[2]);
    if (row[0] == "disable") return Command::launchctlDisable(row[1], row[2]);
    return row[0] == "mdutil" ? Command::mdutilStatus(row[1]) : Command::sfltoolDumpBTM();
}

TEST(AllowedCommand, FixesExecutableArgumentsAndKindOfEachCommand) {
    for (const Texts& row : sampleRows("Commands/accepted.txt")) {
        const Command command = commandIn(row);
        EXPECT_EQ(command.rendered(), row[3]);
        EXPECT_EQ(command.isWrite(), row[4] == "writes") << row[3];
        EXPECT_EQ(messageOf([&] { command.validate(); }), "") << row[3];
    }
}

TEST(AllowedCommand, RefusesEveryArgumentThatIsNotStrictlyOfItsForm) {
    const std::string longest(200, 'a'), cutShort("/Users/a/Library/LaunchAgents/x\0.plist", 38);
    std::vector<Texts> rows = sampleRows("Commands/refused.txt");
    rows.insert(rows.end(), {{"print", "gui/501/" + longest, "", ""},  // this one is not
                             {"disable", "gui/501", longest + "a", "label " + longest + "a"},
                             {"print-disabled", "gui/501\n", "", "domain gui/501\n"},
                             {"bootstrap", "gui/501", cutShort, "plist path " + cutShort}});
    for (const Texts& row : rows) {
        const auto failure = failureOf<CommandError>([&] { commandIn(row).validate(); });
        EXPECT_EQ(failure ? failure->detail : "", row[3]) << row[0];
    }
}

}  // namespace
}  // namespace brell
