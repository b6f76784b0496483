#include "Tests/CorvaneBrell/SampleMacFixture.h"

namespace fs = std::filesystem;

namespace brell {
namespace {

using namespace testing;
using Command = AllowedCommand;

TEST_F(SampleMacTest, LoadsNoJobThatLaunchdWouldNotLoad) {
    const std::string loaded = "homebrew.mxcl.redis", leaving = "com.pebblewick.indexer";
    EXPECT_EQ(launchd(Command::launchctlBootout("gui/501", leaving)).exitCode, 36);
    const std::pair<fs::path, int> rows[] = {{fileOf(loaded), 17},
                                             {fileOf(leaving), 5},
                                             {fileOf("com.spotify.client.startuphelper"), 5},  // disabled
                                             {fileOf("org.millrace.feeds"), 5},  // without a label
                                             {fileOf("com.example.missing"), 5},
                                             {"/Library/LaunchAgents/of.another.mac.plist", 5}};
    for (const auto& [file, exitCode] : rows)
        EXPECT_EQ(launchd(Command::launchctlBootstrap("gui/501", file.string())).exitCode, exitCode) << file;
}

TEST_F(SampleMacTest, LeavesWhatIsThereAsItIs) {
    launchd(Command::launchctlBootout("gui/501", "homebrew.mxcl.redis"));
    fs::remove(fileOf("us.zoom.updater"));
    setContents(fileOf("com.google.keystone.agent"), "edited");
    const auto before = everythingIn(sample.systemRoot());
    SampleMac(sample.systemRoot());
    EXPECT_EQ(everythingIn(sample.systemRoot()), before);
    EXPECT_EQ(everythingIn(SampleMac(folder.path / "one").systemRoot()),
              everythingIn(SampleMac(folder.path / "twin").systemRoot()));

    // One whose filling was broken off gets the rest.
    fs::remove(SimulatedLaunchd::stateFile(folder.path / "one"));
    fs::remove_all(folder.path / "one/Volumes");
    SampleMac(folder.path / "one");
    EXPECT_EQ(everythingIn(folder.path / "one"), everythingIn(folder.path / "twin"));
}

}  // namespace
}  // namespace brell
