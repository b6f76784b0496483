#include "Tests/CorvaneBrell/SampleMacFixture.h"

namespace brell {
namespace {

using namespace testing;

TEST_F(SampleMacTest, LeavesWhatIsThereAsItIs) {
    launchd(AllowedCommand::launchctlBootout("gui/501", "homebrew.mxcl.redis"));
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
