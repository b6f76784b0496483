#include <gtest/gtest.h>

#include "CorvaneBrell/LaunchOptions.h"

#include <sstream>
#include <vector>

#include "Tests/Support/Testing.h"

using namespace brell;
using namespace brell::testing;

namespace {

// The words, parted by blanks: two in a row stand for an empty word between them.
CommandLine read(const std::string& line) {
    std::istringstream stream("corvane-brell " + line);
    Texts words;
    for (std::string word; std::getline(stream, word, ' ');) words.push_back(word);
    std::vector<const char*> all;
    for (const std::string& word : words) all.push_back(word.c_str());
    return readCommandLine(static_cast<int>(all.size()), all.data());
}

TEST(LaunchOptionsTest, EveryWordFillsItsFieldAndPathsBecomeAbsolute) {
    LaunchOptions expected;
    EXPECT_EQ(read("").options, expected);
    EXPECT_FALSE(expected.isHeadlessRequest());

    expected.journalDirectory = fs::current_path() / "j";
    expected.dryRun = expected.quitAfterSnapshot = true;
    expected.snapshotPath = "/tmp/picture.png";
    expected.snapshotDelay = 0.25;
    expected.openGroup = "journal";
    expected.sampleMac = "/tmp/mac";
    const CommandLine shaping = read(
        "--journal-directory a/../j --dry-run --snapshot /tmp/picture.png --snapshot-delay=0.25 "
        "--quit-after-snapshot --open-group journal --sample-mac /tmp/./mac");
    EXPECT_EQ(shaping, (CommandLine{expected, std::nullopt}));
    EXPECT_FALSE(expected.isHeadlessRequest());

    expected = {};
    expected.applyAll = expected.restoreAll = expected.statusJSON = true;
    expected.toggleAgent = "org.example.sync";
    expected.quitAfterCapture = "dock.size";
    EXPECT_EQ(read("--apply-all --restore-all --status-json --toggle-agent org.example.sync "
                   "--quit-after-capture dock.size")
                  .options,
              expected);
    for (const char* request :
         {"--apply-all", "--restore-all", "--status-json", "--toggle-agent=x", "--quit-after-capture=x"})
        EXPECT_TRUE(read(request).options.isHeadlessRequest()) << request;
}

TEST(LaunchOptionsTest, WordsThatMakeNoSenseEndTheRunWithASentence) {
    const auto refusal = [](const std::string& sentence) {
        return CommandLine{{}, EarlyEnd{2, "error: " + sentence + " Try --help.\n"}};
    };
    for (const Texts& row : sampleRows("CommandLine/refused.txt"))
        EXPECT_EQ(read(row[0]), refusal(row[1])) << row[0];
    EXPECT_EQ(read("--two\nlines\x1B[2J"), refusal("--two lines [2J is not a word that Brell knows."));
}

}  // namespace
