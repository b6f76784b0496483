// What other programs, links and names may do to a run without a window: it neither waits, nor writes
// elsewhere, nor lets a name steer the terminal, and it says what stands in its way.

#include <gtest/gtest.h>

#include <unistd.h>

#include <functional>
#include <sstream>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Journal/Journal.h"
#include "BrellCore/Journal/RestoreScript.h"
#include "BrellCore/Support/JsonReader.h"
#include "CorvaneBrell/Headless/HeadlessCommands.h"
#include "CorvaneBrell/SampleMac/SampleMac.h"
#include "Tests/Support/Entries.h"
#include "Tests/Support/Obstacles.h"
#include "Tests/Support/Shell.h"
#include "Tests/Support/Testing.h"

using namespace brell;
using namespace brell::testing;

namespace fs = std::filesystem;

namespace {

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class HostileNeighboursTest : public ::testing::Test {
protected:
    HostileNeighboursTest() {
        ::alarm(100);  // what waits for a neighbour waits for ever
        setContents(elsewhere / "victim", contentsOf(dock));
    }
    ~HostileNeighboursTest() override { ::alarm(0); }

    Finished run(void (*request)(LaunchOptions&)) {
        LaunchOptions options;
        options.sampleMac = mac.systemRoot();
        request(options);
        std::ostringstream out, warnings;
        const auto status = HeadlessCommands::runIfRequested(options, out, warnings);
        return {status.value_or(-1), out.str() + warnings.str()};
    }
    static void applyAll(LaunchOptions& options) { options.applyAll = true; }
    static void restoreAll(LaunchOptions& options) { options.restoreAll = true; }
    static void showStatus(LaunchOptions& options) { options.statusJSON = true; }

    // Performs the action with each obstacle in turn on a Mac that is as it was at first.
    void withEach(const fs::path& at, const std::function<void(Obstacle)>& action) {
        for (const Obstacle obstacle : obstacles) {
            SCOPED_TRACE(at.filename().string() + " is " + nameOf(obstacle));
            fs::remove_all(mac.systemRoot());
            SampleMac again(mac.systemRoot());
            place(obstacle, at, elsewhere);
            const auto before = everythingIn(elsewhere);
            action(obstacle);
            EXPECT_EQ(everythingIn(elsewhere), before);
        }
    }

    const bool inMemory = (keepFoldersInMemory(), true);
    const TemporaryFolder folder;
    const SampleMac mac{folder.path / "mac"};
    const fs::path elsewhere = folder.path / "elsewhere";
    const fs::path journalDirectory = Journal::defaultDirectory(mac.home());
    const fs::path dock = mac.preferences() / "com.apple.dock.plist";
};

TEST_F(HostileNeighboursTest, InAPreferenceFilesPlace) {
    withEach(dock, [&](Obstacle obstacle) {
        const bool isUsable = obstacle == Obstacle::linkToFile;
        const std::string sentence = "The preference file " + dock.string() + " could not be read: ";
        const Finished status = run(showStatus);
        EXPECT_EQ(status.status, 0);
        EXPECT_EQ(contains(status.output, sentence), !isUsable) << status.output;
        const Finished applied = run(applyAll);
        EXPECT_EQ(applied.status, isUsable ? 0 : 1);
        EXPECT_EQ(contains(applied.output, "refused dock.size: " + sentence), !isUsable) << applied.output;
        EXPECT_TRUE(contains(applied.output, "applied finder.path_bar\n"));
        EXPECT_EQ(run(restoreAll).status, 0);
    });
}

TEST_F(HostileNeighboursTest, InTheJournalsPlace) {
    const std::string sentence = "error: The change journal could not be read: ";
    const auto crash = [](LaunchOptions& options) { options.quitAfterCapture = "dock.size"; };
    withEach(journalDirectory / "journal.json", [&](Obstacle) {
        for (const auto request :
             std::vector<void (*)(LaunchOptions&)>{showStatus, applyAll, restoreAll, crash}) {
            const Finished finished = run(request);
            EXPECT_EQ(finished.status, 2);
            EXPECT_TRUE(finished.output.starts_with(sentence)) << finished.output;
            EXPECT_EQ(finished.output.find('\n'), finished.output.size() - 1);
        }
    });
}

TEST_F(HostileNeighboursTest, InTheLocksPlace) {
    const fs::path file = journalDirectory / ".journal.lock";
    withEach(file, [&](Obstacle obstacle) {
        std::string reason = "it is not an ordinary file";
        if (fs::is_symlink(file)) reason = "it is a symbolic link";
        if (obstacle == Obstacle::folder) reason = "Is a directory";
        const Finished finished = run(applyAll);
        if (obstacle == Obstacle::huge) {  // nobody reads or writes it
            EXPECT_EQ(finished.status, 0);
            return;
        }
        EXPECT_EQ(finished.status, 1);
        EXPECT_TRUE(contains(finished.output, "refused dock.size: The change journal could not be written: " +
                                                  file.string() + ": " + reason + ". Nothing was changed.\n"))
            << finished.output;
        EXPECT_FALSE(contains(finished.output, "applied "));
        EXPECT_EQ(namesIn(journalDirectory), (Names{".journal.lock", "screenshots-fixture"}));
    });
}

TEST_F(HostileNeighboursTest, InThePlaceOfTheHistoryTheScriptOrTheScreenshots) {
    const fs::path history = journalDirectory / "history";
    for (const fs::path& at :
         {history / (localDay(systemNow()) + ".jsonl"), journalDirectory / RestoreScript::fileName,
          journalDirectory / "screenshots-fixture"})
        withEach(at, [&](Obstacle obstacle) {
            const Finished applied = run(applyAll);
            EXPECT_EQ(applied.status, 0);
            const std::string warning =
                "warning: The restore script " + at.string() + " could not be written: ";
            const std::size_t told = applied.output.find(warning);
            EXPECT_EQ(told != std::string::npos,
                      at.filename() == RestoreScript::fileName && obstacle == Obstacle::folder);
            EXPECT_EQ(applied.output.find(warning, told + 1), std::string::npos) << "once";
            const std::size_t lines = Journal::open(journalDirectory)->history().size();
            const bool isTaken = at.parent_path() == history;
            EXPECT_EQ(lines, isTaken ? 0 : 2 * TweakCatalog("/").all().size());
            EXPECT_EQ(run(restoreAll).status, 0);
            if (at.filename() == RestoreScript::fileName && obstacle != Obstacle::folder) {
                EXPECT_TRUE(contentsOf(at).starts_with("#!/bin/sh\n"));
            }
        });
    withEach(history, [&](Obstacle obstacle) {
        if (obstacle == Obstacle::linkToFolder) return;  // the user's way to keep it somewhere else
        EXPECT_EQ(run(applyAll).status, 0);
        EXPECT_EQ(Journal::open(journalDirectory)->history().empty(), obstacle != Obstacle::folder);
    });
}

TEST_F(HostileNeighboursTest, InAFoldersPlace) {
    withEach(journalDirectory, [&](Obstacle obstacle) {
        if (obstacle == Obstacle::linkToFolder || obstacle == Obstacle::folder) return;
        for (const auto request : {showStatus, applyAll, restoreAll}) {
            const Finished finished = run(request);
            EXPECT_EQ(finished.status, 2);
            EXPECT_TRUE(finished.output.starts_with("error: The change journal could not be read: " +
                                                    journalDirectory.string()))
                << finished.output;
        }
    });
    withEach(mac.preferences(), [&](Obstacle obstacle) {
        if (obstacle == Obstacle::linkToFolder || obstacle == Obstacle::folder) return;
        const Finished finished = run(applyAll);
        EXPECT_EQ(finished.status, 2);
        EXPECT_TRUE(finished.output.starts_with("error: The folder " + mac.preferences().string() +
                                                " could not be used: "))
            << finished.output;
        EXPECT_TRUE(finished.output.ends_with(".\n"));
    });
    withEach(mac.launchAgents(), [&](Obstacle) {
        EXPECT_EQ(run([](LaunchOptions& options) { options.toggleAgent = "homebrew.mxcl.redis"; }),
                  (Finished{1, "refused homebrew.mxcl.redis: no such user LaunchAgent\n"}));
    });
}

TEST_F(HostileNeighboursTest, InAJobFilesPlace) {
    const fs::path job = mac.launchAgents() / "homebrew.mxcl.redis.plist";
    setContents(elsewhere / "victim", contentsOf(job));
    const auto redisOff = [](LaunchOptions& options) { options.toggleAgent = "homebrew.mxcl.redis"; };
    withEach(job, [&](Obstacle) {
        EXPECT_EQ(run(redisOff), (Finished{1, "refused homebrew.mxcl.redis: no such user LaunchAgent\n"}));
        EXPECT_FALSE(fs::exists(journalDirectory));
        EXPECT_EQ(run([](LaunchOptions& options) { options.toggleAgent = "com.halverson.duskwatch"; }).status,
                  0);
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
    mac.openPreferences()->write(evilText, {"com.apple.dock", "mineffect"});
    const Finished status = run(showStatus);
    EXPECT_FALSE(steers(status.output));
    simdjson::padded_string padded(status.output);
    simdjson::dom::parser parser;
    bool found = false;
    for (const auto row : parser.parse(padded).get_array())
        for (const auto value : row["effective"].get_array())
            found |= value.get_string().value() == PrefValue(evilText).rendered();
    EXPECT_TRUE(found) << status.output;

    PlistDictionary job{
        {{"Label", {evilText}}, {"ProgramArguments", {PlistArray{{std::string("/bin/true")}}}}}};
    setContents(mac.launchAgents() / "evil\x1B[2J.plist", writeXmlPropertyList({job}));
    Journal::open(journalDirectory)
        ->upsert(entryOf(evil, {{{evil, evil}, PrefValue(evil), PrefValue(true)}}));
    LaunchOptions options;
    options.sampleMac = mac.systemRoot();
    options.toggleAgent = evilText;
    options.restoreAll = true;
    std::ostringstream out, warnings;
    EXPECT_EQ(HeadlessCommands::runIfRequested(options, out, warnings), 1);
    EXPECT_FALSE(steers(out.str() + warnings.str())) << out.str();
    EXPECT_TRUE(contains(out.str(), "contains characters Brell does not pass to launchctl.")) << out.str();
    EXPECT_TRUE(contains(out.str(), "is not one Brell may change.")) << out.str();

    options = {};
    options.sampleMac = mac.systemRoot();
    options.journalDirectory = folder.path / evil;
    setContents(*options.journalDirectory / "journal.json", "{\x1B");
    options.applyAll = true;
    std::ostringstream unreadable;
    EXPECT_EQ(HeadlessCommands::runIfRequested(options, unreadable, warnings), 2);
    EXPECT_FALSE(steers(unreadable.str())) << unreadable.str();
    const Finished word =
        runLine("'" BRELL_PROGRAM "' --apply-all \"$(printf '\\033[31m\\302\\233x')\" 2>&1");
    EXPECT_EQ(word.status, 2);
    EXPECT_FALSE(steers(word.output)) << word.output;
}

// Else the next file that is opened would get what is printed.
TEST_F(HostileNeighboursTest, NothingIsPrintedIntoFilesWhenTheProgramStartsWithoutOutputs) {
    const std::string program = "'" BRELL_PROGRAM "' --sample-mac '" + mac.systemRoot().string() + "' ";
    for (const char* closed : {" >&-", " 2>&-", " >&- 2>&- <&-"}) {
        runLine(program + "--quit-after-capture dock.size" + closed);
        EXPECT_EQ(Journal::open(journalDirectory)->active().size(), 1u);
        EXPECT_EQ(contentsOf(journalDirectory / ".journal.lock"), "") << closed;
        runLine(program + "--restore-all" + closed);
        EXPECT_EQ(Journal::open(journalDirectory)->active().size(), 0u);
    }
    EXPECT_EQ(runLine(program + "--apply-all >&-").status, 1) << "nobody was told";
    EXPECT_EQ(run(restoreAll).status, 0);
}

}  // namespace
