#include <sys/stat.h>

#include <regex>

#include "BrellCore/Journal/RestoreScript.h"
#include "CorvaneBrell/Headless/Tour.h"
#include "CorvaneBrell/SampleMac/SamplePast.h"
#include "Tests/CorvaneBrell/HeadlessFixture.h"
#include "Tests/Support/EngineFixture.h"
#include "Tests/Support/Entries.h"

using namespace brell;
using namespace brell::testing;

namespace fs = std::filesystem;

namespace {

class HeadlessCommandsTest : public HeadlessTest {
protected:
    Journal journal() const { return {journalFile(), journalDirectory / "history"}; }
    fs::path journalFile() const { return journalDirectory / "journal.json"; }

    std::string linesForEach(const std::string& before, const std::string& end = "\n") const {
        std::string lines;
        for (const Tweak& tweak : catalog.all()) lines += before + tweak.id + end;
        return lines;
    }
};

TEST_F(HeadlessCommandsTest, WithoutARequestNothingHappens) {
    const auto before = everythingIn(folder.path);
    EXPECT_EQ(run({"--dry-run"}), (Finished{-1, ""}));
    EXPECT_EQ(run({"--restore-all"}), (Finished{0, ""}));
    EXPECT_EQ(everythingIn(folder.path), before);
}

TEST_F(HeadlessCommandsTest, AppliesEverythingAndPutsEverythingBack) {
    EXPECT_EQ(run({"--apply-all"}), (Finished{0, linesForEach("applied ")}));
    const fs::path shots = journalDirectory / "screenshots-fixture";
    EXPECT_TRUE(fs::is_directory(shots));
    EXPECT_EQ(stored({"com.apple.screencapture", "location"}), StoredValue(shots.string()));

    const Finished again = run({"--apply-all"});
    EXPECT_EQ(again.status, 1);
    EXPECT_TRUE(
        again.output.starts_with("refused finder.show_hidden: Show hidden files already has an active "
                                 "change (applied); turn it off first.\n"));

    writeFromOutside(tileSize, 99);
    std::vector<JournalEntry> entries = journal().active();
    std::stable_sort(entries.begin(), entries.end(), [](const JournalEntry& one, const JournalEntry& other) {
        return one.appliedAt > other.appliedAt;
    });
    std::string restored = "drifted entries confirmed for restore: 1\n";
    for (const JournalEntry& entry : entries) restored += "restored " + entry.id.text() + "\n";
    EXPECT_EQ(run({"--restore-all"}),
              (Finished{0, restored + "pending: dockRelaunch, finderRelaunch, immediate, nextAppLaunch\n"}));
    EXPECT_EQ(preferences(), original);
}

TEST_F(HeadlessCommandsTest, EachLineIsThereWhenItsEventHappened) {
    struct Reader : std::stringbuf {
        std::string seen;
        int sync() override {
            seen += str() + "|";
            str("");
            return 0;
        }
    } reader;
    std::ostream out(&reader);
    options.applyAll = true;
    HeadlessCommands::runIfRequested(options, out);
    EXPECT_EQ(reader.seen, linesForEach("applied ", "\n|"));
}

TEST_F(HeadlessCommandsTest, WhatCannotBeRestoredIsNamedAndStaysActive) {
    const JournalEntry entry = entryOf("gone", {{{"org.example.editor", "autosave"}, {}, PrefValue(true)}});
    Journal(journalFile(), journalDirectory / "history").upsert(entry);
    EXPECT_EQ(run({"--restore-all"}),
              (Finished{1, "drifted entries confirmed for restore: 1\nfailed " + entry.id.text() +
                               ": The domain org.example.editor is not one Brell may change.\n"
                               "still active: 1\n"}));
}

TEST_F(HeadlessCommandsTest, ADryRunPrintsEachChangeAndMakesNone) {
    const auto preferencesBefore = everythingIn(sample.preferences());
    const std::string dryJournal = folder.path / "dry";
    const Finished dry = run({"--dry-run", "--apply-all", "--journal-directory", dryJournal});
    EXPECT_EQ(dry.status, 0);
    EXPECT_TRUE(dry.output.starts_with(
        "dry-run: would write com.apple.finder AppleShowAllFiles = true\napplied finder.show_hidden\n"));
    EXPECT_NE(dry.output.find("location = \"" + dryJournal + "/screenshots-fixture\"\napplied shot.folder\n"),
              std::string::npos);
    EXPECT_EQ(everythingIn(sample.preferences()), preferencesBefore);
    EXPECT_FALSE(fs::exists(journalDirectory));
    EXPECT_TRUE(fs::exists(folder.path / "dry" / "journal.json"));
    EXPECT_FALSE(fs::exists(folder.path / "dry" / RestoreScript::fileName));

    // A real run would take what it recorded for its own, and undo what the user chose meanwhile.
    writeFromOutside(tileSize, 77);
    const auto whole = everythingIn(folder.path);
    for (const char* words : {"--restore-all", "--apply-all", "--status-json"})
        EXPECT_EQ(
            run({words, "--journal-directory", dryJournal}),
            (Finished{2, "error: The change journal could not be read: " + dryJournal +
                             "/dry-run.txt says that it is a dry run's, whose changes were never made.\n"}))
            << words;
    EXPECT_EQ(everythingIn(folder.path), whole);
    EXPECT_EQ(run({"--dry-run", "--restore-all", "--journal-directory", dryJournal}).status, 0);
}

TEST_F(HeadlessCommandsTest, ADryRunOverARealJournalShowsWhatARealOneWouldDoAndLeavesItAlone) {
    runProgram("--quit-after-capture dock.size");
    run({"--apply-all"});
    const Finished status = run({"--status-json"});
    const auto before = everythingIn(sample.systemRoot());
    const fs::path copies = folder.path / "copies";
    fs::create_directory(copies);
    const mode_t umask = ::umask(0);
    const auto runDry = [&](const std::string& word) {
        const std::string into = " 2>" + shellWord(folder.path / "said");
        return runProgram("--dry-run --journal-directory " + shellWord(journalDirectory) + " " + word + into,
                          {{"TMPDIR", copies}});
    };
    EXPECT_EQ(runDry("--status-json"), status);
    EXPECT_EQ(contentsOf(folder.path / "said"), "note: The dry run works on a copy of the journal in " +
                                                    journalDirectory.string() + ", which stays as it is.\n");
    const std::string dry = runDry("--restore-all").output;
    ::umask(umask);
    EXPECT_NE(dry.find("dry-run: would write com.apple.dock tilesize = 41\n"), std::string::npos);
    EXPECT_EQ(everythingIn(sample.systemRoot()), before);
    EXPECT_EQ(namesIn(copies).size(), 2u);
    for (const std::string& copy : namesIn(copies)) {
        for (const fs::path& made : {copies / copy, copies / copy / "history"})
            EXPECT_EQ(fs::status(made).permissions(), fs::perms::owner_all) << "the user's alone";
        EXPECT_FALSE(namesIn(copies / copy / "history").empty());
    }
    const std::regex heldBack("dry-run: would .*\n");
    EXPECT_EQ(std::regex_replace(dry, heldBack, ""), run({"--restore-all"}).output);
    EXPECT_EQ(preferences(), original);
}

TEST_F(HeadlessCommandsTest, TheStatusTellsEveryStateWinsOverOtherRequestsAndChangesNothing) {
    makePast(sample, journalDirectory, systemNow());
    writeFromOutside({"com.apple.screencapture", "location"}, "/Users/sam/Shots");
    const auto before = everythingIn(folder.path);
    Finished status =
        run({"--status-json", "--apply-all", "--restore-all", "--quit-after-capture", "dock.size"});
    EXPECT_EQ(everythingIn(folder.path), before);
    for (const JournalEntry& entry : journal().active()) {
        const auto at = status.output.find(entry.id.text());
        if (at != std::string::npos) status.output.replace(at, 36, "its entry");
    }
    EXPECT_EQ(status.status, 0);
    EXPECT_EQ(status.output, brell::testing::sample("CommandLine/status.json"));

    setContents(sample.preferences() / "com.apple.dock.plist", "damaged");
    const Finished damaged = run({"--status-json"});
    EXPECT_EQ(damaged.status, 0);
    EXPECT_NE(damaged.output.find(
                  "{\n    \"effective\" : [],\n    \"id\" : \"dock.size\",\n    \"state\" : \"error: "
                  "The preference file "),
              std::string::npos)
        << damaged.output;
}

TEST_F(HeadlessCommandsTest, AnUnknownAgentIsRefusedAndTheRestGoesOn) {
    const std::string refused = "refused org.example.nobody: no such user LaunchAgent\n";
    EXPECT_EQ(run({"--toggle-agent", "org.example.nobody"}), (Finished{1, refused}));
    const Finished both = run({"--apply-all", "--restore-all", "--toggle-agent", "org.example.nobody"});
    EXPECT_EQ(both.status, 1);
    EXPECT_TRUE(both.output.starts_with(linesForEach("applied ") + refused + "restored ")) << both.output;
    EXPECT_EQ(preferences(), original);
}

TEST_F(HeadlessCommandsTest, AnAgentIsWaitedForAndPutBackAsFarAsItsJobFileAllows) {
    const std::string label = "com.lumenfold.sync";
    sample.openTools()->launchd().setBehaviour(label, {8, 36, 37, {}});  // nearly two seconds
    const Finished off = run({"--toggle-agent", label});
    ASSERT_EQ(journal().active().size(), 1u);
    const std::string id = journal().active().front().id.text();
    EXPECT_EQ(off, (Finished{0, "run /bin/launchctl bootout gui/501/" + label +
                                    "\nrun /bin/launchctl disable gui/501/" + label +
                                    "\nwaiting up to 10 seconds for " + label + " to end\nturned off " +
                                    label + " (entry " + id + ")\n"}));
    fs::remove(fileOf(label));
    EXPECT_EQ(run({"--restore-all"}),
              (Finished{0, "restored " + id + ": No file in your LaunchAgents folder has the label " + label +
                               " any more, so it is allowed again, but there was nothing to load.\n"}));
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

TEST_F(HeadlessCommandsTest, ATourShowsTheWholeCycleAndLeavesTheMacAsItWas) {
    std::ostringstream out;
    runProgram("--quit-after-capture dock.size");  // an earlier run left a change behind
    EXPECT_EQ(runHeadlessTour(options, out), ExitStatus::success);
    for (const char* line : {"\nrestored ", "\napplied priv.no_personalized_ads\n",
                             "  dock.size                      onByBrell    48\n", "/restore.sh\n"})
        EXPECT_NE(out.str().find(line), std::string::npos) << line;
    EXPECT_EQ(preferences(), original);
    EXPECT_NE(contentsOf(journalDirectory / "corvane-brell-report.md").find("| restored | Icon size |"),
              std::string::npos);

    setContents(folder.path / "file", "in the way");
    options.sampleMac = folder.path / "file" / "mac";
    out.str("");
    EXPECT_EQ(runHeadlessTour(options, out), ExitStatus::cannotStart);
    EXPECT_TRUE(out.str().starts_with("error: ") && out.str().find('\n') == out.str().size() - 1)
        << out.str();
}

// The program as scripts run it.
using HeadlessProgramTest = HeadlessCommandsTest;

TEST_F(HeadlessProgramTest, EndsAfterTheCaptureAndTheNextRunPutsItBack) {
    EXPECT_EQ(runProgram("--quit-after-capture dock.sizes"),
              (Finished{2, "refused dock.sizes: not in the catalog\n"}));
    EXPECT_FALSE(fs::exists(journalFile()));

    const Finished crashed = runProgram("--quit-after-capture dock.size --restore-all");
    ASSERT_EQ(journal().all().size(), 1u);
    const JournalEntry entry = journal().all()[0];
    EXPECT_EQ(entry.status, EntryStatus::capturing);
    EXPECT_EQ(crashed, (Finished{0, "quit-after-capture: entry " + entry.id.text() +
                                        " for dock.size is durable; exiting before the first write\n"}));
    EXPECT_EQ(preferences(), original);
    EXPECT_NE(contentsOf(journalDirectory / RestoreScript::fileName).find("'tilesize'"), std::string::npos);

    EXPECT_EQ(runProgram("--quit-after-capture dock.size"),
              (Finished{1,
                        "refused dock.size: Icon size already has an active change (capturing); turn it off "
                        "first.\n"}));
    EXPECT_EQ(runProgram("--restore-all"),
              (Finished{0, "restored " + entry.id.text() + "\npending: dockRelaunch\n"}));
    EXPECT_EQ(preferences(), original);
}

TEST_F(HeadlessProgramTest, SaysWhatItDoesNotUnderstand) {
    const auto before = everythingIn(folder.path);
    EXPECT_EQ(runProgram("--apply-all --fast 2>&1"),
              (Finished{2, "error: --fast is not a word that Brell knows. Try --help.\n"}));
    EXPECT_EQ(runProgram("--fast 2>/dev/null").output, "");
    const Finished nothing = runLine(shellWord(BRELL_PROGRAM) + " 2>&1");
    EXPECT_EQ(nothing.status, 2);
    EXPECT_TRUE(nothing.output.starts_with("error: There is nothing to do")) << nothing.output;
    const Finished windowAlone = runProgram("--snapshot " + shellWord(folder.path / "w.png") + " 2>&1");
    EXPECT_EQ(windowAlone, nothing) << "no tour instead";
    EXPECT_EQ(runProgram("--help").status, 0);
    EXPECT_TRUE(runProgram("--version").output.starts_with("Corvane Brell "));
    EXPECT_EQ(everythingIn(folder.path), before);
}

#ifndef __APPLE__  // where these are the user's own settings
TEST_F(HeadlessProgramTest, WithoutASampleMacNothingIsMadeBeforeTheFirstWrite) {
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

TEST_F(HeadlessProgramTest, WhatNobodyCouldReadIsNoSuccess) {
    for (const char* words : {"--help", "--version", "--status-json", "--quit-after-capture dock.size"})
        for (const char* nowhere : {" >&-", " >/dev/full"})
            EXPECT_EQ(runProgram(words + std::string(nowhere) + " 2>/dev/null").status, 1)
                << words << nowhere;
}

}  // namespace
