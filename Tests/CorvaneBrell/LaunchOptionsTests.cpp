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
    for (const std::vector<const char*>& request :
         std::vector<std::vector<const char*>>{{"--apply-all"},
                                               {"--restore-all"},
                                               {"--status-json"},
                                               {"--toggle-agent=x"},
                                               {"--quit-after-capture=x"}})
        EXPECT_TRUE(read(request).options.isHeadlessRequest()) << request[0];
}

TEST(LaunchOptionsTest, WordsThatMakeNoSenseEndTheRunWithAMessageOnOneLine) {
    const std::vector<std::pair<std::vector<const char*>, const char*>> cases{
        {{"--apply-everything"}, "--apply-everything"},
        {{"dock.size"}, "dock.size"},
        {{"--status-json", "--", "extra"}, "extra"},
        {{"-a"}, "-a"},
        {{"--apply-all=maybe"}, "maybe"},
        {{"--toggle-agent"}, "--toggle-agent"},
        {{"--journal-directory", "a", "--journal-directory", "b"}, "--journal-directory"},
        {{"--journal-directory", ""}, "--journal-directory"},
        {{"--sample-mac="}, "--sample-mac"},
        {{"--snapshot-delay", "soon"}, "--snapshot-delay"},
        {{"--snapshot-delay", "-1"}, "--snapshot-delay"},
        {{"--snapshot-delay", "nan"}, "--snapshot-delay"},
        {{"--two\nlines\x1B[2J"}, "--two lines [2J"},
    };
    for (const auto& [words, named] : cases) {
        const CommandLine line = read(words);
        ASSERT_TRUE(line.earlyEnd) << words[0];
        EXPECT_EQ(line.earlyEnd->status, 2) << words[0];
        const std::string& text = line.earlyEnd->text;
        EXPECT_TRUE(text.starts_with("error: ") && text.find('\n') == text.size() - 1) << text;
        EXPECT_NE(text.find(named), std::string::npos) << text;
        EXPECT_EQ(line.options, LaunchOptions()) << words[0];
    }
}

TEST(LaunchOptionsTest, HelpNamesTheWordsAndVersionTheProgram) {
    const CommandLine help = read({"--apply-all", "--help"});
    ASSERT_TRUE(help.earlyEnd);
    EXPECT_EQ(help.earlyEnd->status, 0);
    EXPECT_EQ(help.options, LaunchOptions());
    for (const char* word : {"--journal-directory DIR", "--dry-run", "--snapshot-delay SECONDS", "--version"})
        EXPECT_NE(help.earlyEnd->text.find(word), std::string::npos) << word;
    const CommandLine version = read({"--version"});
    ASSERT_TRUE(version.earlyEnd);
    EXPECT_EQ(version.earlyEnd->status, 0);
    EXPECT_TRUE(version.earlyEnd->text.starts_with("Corvane Brell 0."));
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
        EXPECT_EQ(line.earlyEnd->status, 2);
    }
}

}  // namespace
