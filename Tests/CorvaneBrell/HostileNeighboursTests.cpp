// Other programs, links and names may do their worst to a run without a window: it neither waits, nor writes
// elsewhere, nor lets a name steer the terminal, and it says what stands in its way.

#include <fmt/format.h>
#include <unistd.h>

#include <functional>

#include "BrellCore/Journal/RestoreScript.h"
#include "BrellCore/Support/JsonReader.h"
#include "Tests/CorvaneBrell/HeadlessFixture.h"
#include "Tests/Support/Entries.h"
#include "Tests/Support/Obstacles.h"

using namespace brell;
using namespace brell::testing;

namespace {

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class HostileNeighboursTest : public HeadlessTest {
protected:
    HostileNeighboursTest() {
        ::alarm(100);  // what waits for a neighbour waits for ever
        setContents(elsewhere / "victim", contentsOf(dock));
    }
    ~HostileNeighboursTest() override { ::alarm(0); }

    // Performs the action with each obstacle in turn on a Mac that is as it was at first.
    void withEach(const fs::path& at, const std::function<void(Obstacle)>& action) {
        for (const Obstacle obstacle : obstacles) {
            SCOPED_TRACE(at.filename().string() + " is " + nameOf(obstacle));
            fs::remove_all(sample.systemRoot());
            SampleMac again(sample.systemRoot());
            place(obstacle, at, elsewhere);
            const auto before = everythingIn(elsewhere);
            action(obstacle);
            EXPECT_EQ(everythingIn(elsewhere), before);
        }
    }

    const fs::path elsewhere = folder.path / "elsewhere";
    const fs::path dock = sample.preferences() / "com.apple.dock.plist";
};

// A row names a place in the home, a word of Brell, the obstacle that does no harm there, the status with the
// others, what is said of them, and what is said all the same.
TEST_F(HostileNeighboursTest, WhatStandsInThePlaceOfAFileOrAFolderIsSaidAndTheRestGoesOn) {
    for (Texts row : sampleRows("HostileNeighbours/in-the-way.txt")) {
        row.resize(6);
        const fs::path at = sample.home() / row[0];
        const std::string &word = row[1], &harmless = row[2], &goesOn = row[5];
        const std::string sentence = fmt::format(fmt::runtime(row[4]), at.string());
        const int status = std::stoi(row[3]);
        withEach(at, [&](Obstacle obstacle) {
            // A folder may be a link to another one: the user's way to keep it somewhere else.
            if (harmless == nameOf(Obstacle::folder) && obstacle == Obstacle::linkToFolder) return;
            const bool isInTheWay = harmless != "any" && harmless != nameOf(obstacle);
            const Finished finished = run({word});
            EXPECT_EQ(finished.status, isInTheWay ? status : 0) << word;
            EXPECT_EQ(contains(finished.output, sentence), isInTheWay) << finished.output;
            EXPECT_TRUE(contains(finished.output, goesOn)) << finished.output;
            if (status != 2) {
                EXPECT_EQ(run({"--restore-all"}).status, 0) << said;
            } else if (isInTheWay) {
                EXPECT_EQ(finished.output.find('\n'), finished.output.size() - 1) << finished.output;
            }
        });
    }
}

TEST_F(HostileNeighboursTest, InThePlaceOfTheHistoryTheScriptOrTheScreenshots) {
    const fs::path history = journalDirectory / "history";
    const fs::path script = journalDirectory / RestoreScript::fileName;
    const auto linesOfHistory = [&] { return Journal::open(journalDirectory)->history().size(); };
    // More than one, should the day end in between.
    const std::vector<fs::path> days{history / (localDay(systemNow()) + ".jsonl"),
                                     history / (localDay(systemNow() + std::chrono::hours(24)) + ".jsonl")};
    for (const fs::path& at : {days[0], script, journalDirectory / "screenshots-fixture"})
        withEach(at, [&](Obstacle obstacle) {
            if (at == days[0]) place(obstacle, days[1], elsewhere);
            EXPECT_EQ(run({"--apply-all"}).status, 0);
            const std::string warning =
                "warning: The restore script " + at.string() + " could not be written: ";
            EXPECT_EQ(contains(said, warning), at == script && obstacle == Obstacle::folder);
            EXPECT_EQ(said.find(warning), said.rfind(warning)) << "once";
            EXPECT_EQ(linesOfHistory(), at == days[0] ? 0 : 2 * catalog.all().size());
            EXPECT_EQ(run({"--restore-all"}).status, 0);
            EXPECT_EQ(contentsOf(script).starts_with("#!/bin/sh\n"),
                      at != script || obstacle != Obstacle::folder);
        });
    withEach(history, [&](Obstacle obstacle) {
        if (obstacle == Obstacle::linkToFolder) return;  // the user's way to keep it somewhere else
        EXPECT_EQ(run({"--apply-all"}).status, 0);
        EXPECT_EQ(linesOfHistory() == 0, obstacle != Obstacle::folder);
    });
}

// A line end, an escape sequence of one character, text that runs backwards, a quote and a backslash: what a
// property list can hold. And what a file's name or JSON can hold: colours and a bell, too.
const std::string evilText = "\r\n\u009B2J\u202Eevil\u2066\x7F\u2028\"'\\ü";
const std::string evil = "\x1B[31m\a" + evilText;

bool steers(const std::string& output) {
    for (const char* part : {"\x1B", "\a", "\r", "\u009B", "\u202E", "\u2066", "\x7F", "\u2028"})
        if (contains(output, part)) return true;
    return false;
}

TEST_F(HostileNeighboursTest, NoValueNameOrPathSteersTheTerminal) {
    writeFromOutside({"com.apple.dock", "mineffect"}, evilText);
    const Finished status = run({"--status-json"});
    EXPECT_FALSE(steers(status.output));
    simdjson::dom::parser parser;
    bool found = false;
    for (const auto row : parser.parse(status.output).get_array())
        for (const auto value : row["effective"].get_array())
            found |= value.get_string().value() == PrefValue(evilText).rendered();
    EXPECT_TRUE(found) << status.output;

    setContents(fileOf("evil\x1B[2J"), writeXmlPropertyList({PlistDictionary{{{"Label", {evilText}}}}}));
    Journal::open(journalDirectory)
        ->upsert(entryOf(evil, {{{evil, evil}, PrefValue(evil), PrefValue(true)}}));
    const Finished refused = run({"--toggle-agent", evilText, "--restore-all"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_FALSE(steers(refused.output + said)) << refused.output;
    EXPECT_TRUE(contains(refused.output, "contains characters Brell does not pass to launchctl."));
    EXPECT_TRUE(contains(refused.output, "is not one Brell may change.")) << refused.output;

    setContents(folder.path / evil / "journal.json", "{\x1B");
    const Finished unreadable = run({"--journal-directory", folder.path / evil, "--apply-all"});
    EXPECT_EQ(unreadable.status, 2);
    EXPECT_FALSE(steers(unreadable.output)) << unreadable.output;

    const Finished word = runProgram("--apply-all \"$(printf '\\033[31m\\302\\233x')\" 2>&1");
    EXPECT_EQ(word.status, 2);
    EXPECT_FALSE(steers(word.output)) << word.output;
}

// Else the next file that is opened would get what is printed.
TEST_F(HostileNeighboursTest, NothingIsPrintedIntoFilesWhenTheProgramStartsWithoutOutputs) {
    for (const std::string closed : {" >&-", " 2>&-", " >&- 2>&- <&-"}) {
        runProgram("--quit-after-capture dock.size" + closed);
        EXPECT_EQ(Journal::open(journalDirectory)->active().size(), 1u);
        EXPECT_EQ(contentsOf(journalDirectory / ".journal.lock"), "") << closed;
        runProgram("--restore-all" + closed);
        EXPECT_EQ(Journal::open(journalDirectory)->active().size(), 0u);
    }
    EXPECT_EQ(runProgram("--apply-all >&-").status, 1) << "nobody was told";
    EXPECT_EQ(run({"--restore-all"}).status, 0);
}

}  // namespace
