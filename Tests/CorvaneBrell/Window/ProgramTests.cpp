// The program with its window, as scripts run it.

#include <gtest/gtest.h>

#include "Tests/Support/Shell.h"
#include "Tests/Support/Testing.h"

using namespace brell::testing;

namespace {

class WindowProgramTest : public ::testing::Test {
protected:
    Finished run(const fs::path& sampleMac, const std::string& picture) const {
        return runLine(shellWord(BRELL_WINDOW_PROGRAM) + " --sample-mac " + shellWord(sampleMac) +
                       " --snapshot " + shellWord(picture) +
                       " --snapshot-delay 0 --quit-after-snapshot 2>&1");
    }

    const TemporaryFolder folder;
    const fs::path mac = folder.path / "mac";
};

}  // namespace

TEST_F(WindowProgramTest, APictureReplacesItsFileAndFollowsNoLink) {
    const fs::path picture = folder.path / "picture.png", victim = folder.path / "victim";
    setContents(victim, "mine");
    fs::create_symlink(victim, picture);
    EXPECT_EQ(run(mac, picture).status, 0);
    EXPECT_TRUE(fs::exists(mac / "Users/sam/Library/Application Support/Corvane Brell/journal.json"))
        << "a new Mac has a past, so that there is something to see";
    EXPECT_EQ(contentsOf(victim), "mine");
    EXPECT_FALSE(fs::is_symlink(picture));
    EXPECT_TRUE(contentsOf(picture).starts_with("\x89PNG"));

    const fs::path obstacle = folder.path / "folder.png";
    fs::create_directory(obstacle);
    for (const auto& [file, sentence] :
         {std::pair{obstacle, "The file " + obstacle.string() + " could not be replaced: Is a directory."},
          std::pair{victim, "The picture could not be written to " + victim.string() +
                                ": its name does not end as that of a picture, such as .png."}}) {
        const Finished finished = run(mac, file);
        EXPECT_EQ(finished.status, 1);
        EXPECT_NE(finished.output.find("error: " + sentence + "\n"), std::string::npos) << finished.output;
    }
}

TEST_F(WindowProgramTest, NoSampleMacIsMadeInAFolderOfSomethingElse) {
    setContents(mac / "mine", "mine");
    EXPECT_EQ(run(mac, folder.path / "picture.png").status, 2);
    EXPECT_EQ(namesIn(mac), Names{"mine"});
}
