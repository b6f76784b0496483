#include <gtest/gtest.h>

#include "CorvaneBrell/LaunchOptions.h"

#include <unistd.h>

#include <vector>

#include "Tests/Support/Testing.h"

using namespace brell;
using namespace brell::testing;

namespace fs = std::filesystem;

namespace {

CommandLine read(std::vector<const char*> words) {
    words.insert(words.begin(), "corvane-brell");
    return readCommandLine(static_cast<int>(words.size()), words.data());
}

TEST(LaunchOptionsTest, EveryWordFillsItsFieldAndPathsBecomeAbsolute) {
    LaunchOptions expected;
    EXPECT_EQ(read({}).options, expected);
    EXPECT_FALSE(read({}).options.isHeadlessRequest());

    expected.journalDirectory = fs::current_path() / "j";
    expected.dryRun = expected.quitAfterSnapshot = true;
    expected.snapshotPath = "/tmp/picture.png";
    expected.snapshotDelay = 0.25;
    expected.openGroup = "journal";
    expected.sampleMac = "/tmp/mac";
    const CommandLine shaping = read({"--journal-directory", "a/../j", "--dry-run", "--snapshot",
                                      "/tmp/picture.png", "--snapshot-delay=0.25", "--quit-after-snapshot",
                                      "--open-group", "journal", "--sample-mac", "/tmp/./mac"});
    EXPECT_EQ(shaping.earlyEnd, std::nullopt);
    EXPECT_EQ(shaping.options, expected);
    EXPECT_FALSE(expected.isHeadlessRequest());

    expected = {};
    expected.applyAll = expected.restoreAll = expected.statusJSON = true;
    expected.toggleAgent = "org.example.sync";
    expected.quitAfterCapture = "dock.size";
    EXPECT_EQ(read({"--apply-all", "--restore-all", "--status-json", "--toggle-agent", "org.example.sync",
                    "--quit-after-capture", "dock.size"})
                  .options,
              expected);
    for (const char* request :
         {"--apply-all", "--restore-all", "--status-json", "--toggle-agent=x", "--quit-after-capture=x"})
        EXPECT_TRUE(read({request}).options.isHeadlessRequest()) << request;
}

TEST(LaunchOptionsTest, WordsThatMakeNoSenseEndTheRunWithASentence) {
    const auto unknown = [](const std::string& word) { return word + " is not a word that Brell knows."; };
    const auto needs = [](const std::string& word) {
        return word + ", that is neither empty nor begins with --.";
    };
    const std::string folder = needs("--journal-directory needs a value, DIR");
    const std::string delay = "--snapshot-delay takes seconds from 0 to 3600, not ";
    const std::vector<std::pair<std::vector<const char*>, std::string>> cases{
        {{"--apply-everything"}, unknown("--apply-everything")},
        {{"dock.size"}, unknown("dock.size")},
        {{"--status-json", "--", "extra"}, unknown("--")},
        {{"--two\nlines\x1B[2J"}, unknown("--two lines [2J")},
        {{"--journal-directory=", "--dry-run", "--apply-all"}, folder},
        {{"--journal-directory", "", "--apply-all"}, folder},
        {{"--journal-directory", "--dry-run", "--apply-all"}, folder},
        {{"--apply-all", "--journal-directory"}, folder},
        {{"--sample-mac="}, needs("--sample-mac needs a value, DIR")},
        {{"--toggle-agent", "--restore-all"}, needs("--toggle-agent needs a value, LABEL")},
        {{"--dry-run=false", "--apply-all"}, "--dry-run takes no value."},
        {{"--status-json=0", "--sample-mac", "M"}, "--status-json takes no value."},
        {{"--journal-directory", "a", "--journal-directory=b"}, "--journal-directory is given twice."},
        {{"--snapshot", "p.png", "--snapshot-delay", "soon"}, delay + "soon."},
        {{"--snapshot", "p.png", "--snapshot-delay", "-1"}, delay + "-1."},
        {{"--snapshot", "p.png", "--snapshot-delay", "nan"}, delay + "nan."},
        {{"--quit-after-snapshot"},
         "--quit-after-snapshot says something about --snapshot, which is missing."},
        {{"--snapshot=p.png", "--apply-all"},
         "--snapshot needs the window, which the other words do without."},
    };
    for (const auto& [words, sentence] : cases)
        EXPECT_EQ(read(words), (CommandLine{{}, EarlyEnd{2, "error: " + sentence + " Try --help.\n"}}))
            << sentence;
}

TEST(LaunchOptionsTest, HelpNamesTheWordsAndVersionTheProgram) {
    const CommandLine help = read({"--apply-all", "--help"});
    EXPECT_EQ(help.options, LaunchOptions());
    EXPECT_EQ(help.earlyEnd.value().status, 0);
    for (const char* word : {"--journal-directory DIR", "--dry-run", "--snapshot-delay SECONDS", "--version"})
        EXPECT_NE(help.earlyEnd->text.find(word), std::string::npos) << word;
    EXPECT_TRUE(read({"--version"}).earlyEnd.value().text.starts_with("Corvane Brell 0."));
}

TEST(LaunchOptionsTest, ARelativePathInAFolderThatIsGoneIsAClearError) {
    const fs::path before = fs::current_path();
    {
        const TemporaryFolder folder;
        fs::current_path(folder.path);
        fs::remove_all(folder.path);
        const CommandLine line = read({"--journal-directory", "here", "--status-json"});
        fs::current_path(before);
        ASSERT_TRUE(line.earlyEnd);
        EXPECT_EQ(line.earlyEnd->text,
                  "error: --journal-directory takes here from the current folder, which could not be found: "
                  "No such file or directory. Try --help.\n");
    }
}

}  // namespace
