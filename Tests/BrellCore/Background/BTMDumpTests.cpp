#include "BrellCore/Background/BTMDump.h"

#include <gtest/gtest.h>

#include "BrellCore/Background/BTMReader.h"
#include "Tests/Support/FakeCommandRunner.h"
#include "Tests/Support/Testing.h"

namespace brell {
namespace {

using testing::FakeCommandRunner;

const std::string dumped = testing::sample("BTMDump/dump.txt");

TEST(BTMDumpParser, ReadsEverySectionItemAndField) {
    BTMItem daemon{"16.com.example.daemon",
                   {},
                   "Example Corp: Tools",
                   "ABCDE12345",
                   BTMItemType::legacyDaemon,
                   true,
                   false,
                   "com.example.app",
                   "file:///Library/LaunchDaemons/com.example%20d.plist",
                   "Example",
                   {"16.com.example.tool", "com.example:other"}};
    BTMItem app{"2.com.example.app",
                "Example:",
                {},
                {},
                BTMItemType::other,
                false,
                true,
                {},
                "/Applications/Example App.app",
                {},
                {}};
    BTMItem root{"root", {}, {}, {}, BTMItemType::loginItem, false, true, {}, {}, {}, {}};
    const auto dump = BTMDumpParser::parse(dumped);
    ASSERT_TRUE(dump);
    EXPECT_EQ(*dump, (BTMDump{{{-2, {daemon}}, {0, {root}}, {501, {app}}}}));
    EXPECT_EQ(dump->systemItems(), (std::vector{daemon, root}));
    EXPECT_EQ(dump->items(502), std::vector<BTMItem>{});
    EXPECT_EQ(BTMDumpParser::parse("#1:\nIdentifier: before any section\n"), std::nullopt);
}

TEST(BTMDumpParser, EveryLineFromANumberSignToAColonOpensAnItemExceptWhatAListHolds) {
    const auto dump = BTMDumpParser::parse(
        "Records for UID 0 :\n#:\nIdentifier: a\n# 2:\nIdentifier: b\n#x: y:\nIdentifier: c\n"
        "Embedded Item Identifiers:\n#1: d:\n#2: e\n# 4:\nIdentifier: f\n#1: g:\nIdentifier: h\n"
        "Embedded Item Identifiers:\nRecords for UID 0 :\n#1: i:\nIdentifier: j\n");
    ASSERT_TRUE(dump);
    std::vector<std::string> ids;
    for (const BTMItem& item : dump->items(0)) ids.push_back(item.id);
    EXPECT_EQ(ids, (std::vector<std::string>{"a", "b", "c", "f", "h", "j"}));
    EXPECT_EQ(dump->items(0)[2].embeddedIdentifiers, (std::vector<std::string>{"d:", "e"}));
}

TEST(BTMDumpParser, ADumpCutShortAnywhereGivesTheItemsBeforeTheCut) {
    const auto whole = BTMDumpParser::parse(dumped);
    for (std::size_t length = 0; length < dumped.size(); ++length) {
        const auto dump = BTMDumpParser::parse(dumped.substr(0, length)).value_or(BTMDump{});
        ASSERT_LE(dump.items(-2).size(), whole->items(-2).size()) << length;
        if (!dump.items(501).empty()) {
            ASSERT_EQ(dump.items(-2), whole->items(-2)) << length;
        }
    }
}

TEST(BTMItem, StripsTheNumberInFrontOfTheIdentifierOnly) {
    const auto stripped = [](std::string id) {
        BTMItem item;
        item.id = std::move(id);
        return std::string(item.strippedIdentifier());
    };
    EXPECT_EQ(stripped("0.com.example.x"), "com.example.x");
    EXPECT_EQ(stripped("16.com.example.tool"), "com.example.tool");
    for (const char* id : {"com.example.x", "12abc.x", ".x", "12", ""}) EXPECT_EQ(stripped(id), id);
}

TEST(BTMReader, GivesADumpOnlyToAnAdministratorAndOnlyOnSuccess) {
    FakeCommandRunner runner;
    const auto command = AllowedCommand::sfltoolDumpBTM();
    runner.answer(command, dumped);
    EXPECT_EQ((BTMReader{runner, [] { return false; }}.dump()), std::nullopt);
    EXPECT_TRUE(runner.commands.empty());
    EXPECT_EQ((BTMReader{runner, [] { return true; }}.dump()), BTMDumpParser::parse(dumped));
    runner.answer(command, CommandResult{1, dumped, "not authorized"});
    EXPECT_EQ((BTMReader{runner, [] { return true; }}.dump()), std::nullopt);
    runner.fail(command);
    EXPECT_EQ((BTMReader{runner, [] { return true; }}.dump()), std::nullopt);
}

TEST(BTMReader, AdministratorsHaveTheGroupAsTheirOwnOrAreItsMembers) {
    const AdminGroup group{90, {"root", "jo"}};
    EXPECT_TRUE(isAdministrator(80, std::nullopt, "jo"));
    EXPECT_TRUE(isAdministrator(90, group, "ann"));
    EXPECT_TRUE(isAdministrator(20, group, "jo"));
    EXPECT_FALSE(isAdministrator(20, group, "ann"));
    EXPECT_FALSE(isAdministrator(20, std::nullopt, "jo"));
}

}  // namespace
}  // namespace brell
