#include "BrellCore/Engine/EngineError.h"
#include "CorvaneBrell/SampleMac/SamplePast.h"
#include "Tests/CorvaneBrell/HeadlessFixture.h"

using namespace brell;
using namespace brell::testing;

namespace {

using HeadlessCommandsTest = HeadlessTest;

TEST_F(HeadlessCommandsTest, EachLineIsThereWhenItsEventHappened) {
    struct Reader : std::stringbuf {
        std::string seen, last;
        std::function<void()> afterIt;
        int sync() override {
            seen += str() + "|";
            if (str() == last) afterIt();
            str("");
            return 0;
        }
    } reader;
    const fs::path journal = journalDirectory / "journal.json";
    reader.afterIt = [&] { setContents(journal, "damaged"); };
    std::string expected;
    for (const Tweak& tweak : catalog.all()) {
        reader.last = "applied " + tweak.id + "\n";
        expected += reader.last + "|";
    }
    expected += "error: The change journal could not be read: " + journal.string() +
                ": it is damaged, or something else than Brell wrote it.\n|";
    std::ostream out(&reader);
    options.applyAll = options.restoreAll = true;
    EXPECT_EQ(HeadlessCommands::runIfRequested(options, out), 1);
    EXPECT_EQ(reader.seen, expected);
}

TEST_F(HeadlessCommandsTest, TheStatusTellsEveryStateWinsOverOtherRequestsAndChangesNothing) {
    makePast(sample, journalDirectory, systemNow());
    writeFromOutside({"com.apple.screencapture", "location"}, "/Users/sam/Shots");
    const auto before = everythingIn(folder.path);
    Finished status =
        run({"--status-json", "--apply-all", "--restore-all", "--quit-after-capture", "dock.size"});
    EXPECT_EQ(everythingIn(folder.path), before);
    for (const JournalEntry& entry : Journal::open(journalDirectory)->active()) {
        const auto at = status.output.find(entry.id.text());
        if (at != std::string::npos) status.output.replace(at, 36, "its entry");
    }
    EXPECT_EQ(status.status, 0);
    EXPECT_EQ(status.output, brell::testing::sample("CommandLine/status.json"));

    setContents(sample.preferences() / "com.apple.dock.plist", "damaged");
    const Finished damaged = run({"--status-json"});
    EXPECT_EQ(damaged.status, 0);
    EXPECT_NE(damaged.output.find("\"state\" : \"error: The preference file "), std::string::npos);
}

TEST_F(HeadlessCommandsTest, AnAgentThatTakesItsTimeIsWaitedForInWords) {
    const std::string label = "com.lumenfold.sync";
    sample.openTools()->launchd().setBehaviour(label, {8, 36, 37, {}});  // nearly two seconds
    EXPECT_NE(
        run({"--toggle-agent", label}).output.find("\nwaiting up to 10 seconds for " + label + " to end\n"),
        std::string::npos);
}

TEST_F(HeadlessCommandsTest, AnotherBrellThatStaysBusyIsWaitedForOnlyOnce) {
    const EngineError busy(JournalFailure{JournalFailure::Kind::isBusy, "others have it"});
    std::vector<std::string> tried;
    std::ostringstream out;
    const auto apply = [&](const Tweak& tweak) {
        tried.push_back(tweak.id);
        if (tweak.id == "b") throw busy;
        throw std::runtime_error("no");
    };
    Tweak a{}, b{}, c{};
    a.id = "a", b.id = "b", c.id = "c";
    EXPECT_FALSE(HeadlessCommands::applyEach({&a, &b, &c}, apply, out));
    EXPECT_EQ(tried, (Texts{"a", "b"}));
    EXPECT_EQ(out.str(),
              "refused a: no\nrefused b: " + std::string(busy.what()) + "\nrefused c: " + busy.what() + "\n");
}

#ifndef __APPLE__  // where these are the user's own settings
TEST_F(HeadlessCommandsTest, WithoutASampleMacNothingIsMadeBeforeTheFirstWrite) {
    const fs::path home = folder.path / "home", temporary = folder.path / "temporary";
    fs::create_directory(home);
    fs::create_directory(temporary);
    const auto runHere = [&](const std::string& words) {
        return runLine(shellWord(BRELL_PROGRAM) + " " + words, {{"HOME", home}, {"TMPDIR", temporary}});
    };
    for (const char* words :
         {"--status-json", "--restore-all", "--dry-run --status-json", "--dry-run --apply-all"})
        EXPECT_EQ(runHere(words).status, 0) << words;
    EXPECT_EQ(namesIn(home), Names());
    EXPECT_EQ(runHere("--apply-all").status, 0);
    EXPECT_TRUE(namesIn(Journal::defaultDirectory(home)).contains("Preferences"));
}
#endif

TEST_F(HeadlessCommandsTest, WhatNobodyCouldReadIsNoSuccess) {
    for (const char* words : {"--help", "--version", "--status-json", "--quit-after-capture dock.size"})
        for (const char* nowhere : {" >&-", " >/dev/full"})
            EXPECT_EQ(runProgram(words + std::string(nowhere) + " 2>/dev/null").status, 1)
                << words << nowhere;
}

}  // namespace
