#include <algorithm>

#include "BrellCore/Background/BTMReader.h"
#include "BrellCore/Background/LoginItems.h"
#include "BrellCore/Review/Spotlight.h"
#include "Tests/CorvaneBrell/SampleMacFixture.h"

namespace fs = std::filesystem;

namespace brell {
namespace {

using namespace testing;
using Command = AllowedCommand;

// Toggleable, admin only or in the system's settings; on or off; allowed or not, if that is known.
std::string stateOf(const LoginItemRow& row) {
    const std::string allowed = row.allowedInSystemSettings ? *row.allowedInSystemSettings ? "y" : "n" : "?";
    return std::string(1, "tas"[static_cast<int>(row.badge)]) + (row.isOn ? "1" : "0") + allowed;
}

TEST_F(SampleMacTest, HasAnItemForEveryStateThatTheListCanShow) {
    const auto tools = sample.openTools();
    const LaunchAgentReader reader{*tools, sample.home(), SampleMac::uid, sample.systemRoot()};
    const BTMDump dump = BTMReader{*tools, [] { return SampleMac::isAdmin; }}.dump().value();
    const auto rows =
        LoginItemsMerger::merge(reader.userAgents(), reader.systemAgents(), &dump, SampleMac::uid);
    std::set<std::string> states;
    for (const LoginItemRow& row : rows) states.insert(stateOf(row));
    EXPECT_EQ(states, (Names{"t0?", "t0y", "t1?", "t1y", "a0y", "a1?", "a1n", "a1y", "s1?", "s1n", "s1y"}));
    EXPECT_EQ(rows.size(), 25u);
    EXPECT_TRUE(std::any_of(rows.begin(), rows.end(), [](const auto& row) { return row.isCrashLooping; }));
    EXPECT_EQ(fs::status(sample.systemRoot()).permissions(), fs::perms::owner_all);
}

TEST_F(SampleMacTest, HasVolumesInEveryStateOfTheIndex) {
    std::set<std::optional<bool>> states;
    const auto volumes = SpotlightStatusReader::mountedVolumes(sample.systemRoot());
    for (const auto& volume : SpotlightStatusReader{*sample.openTools()}.statuses(volumes))
        states.insert(volume.indexing);
    EXPECT_EQ(states, (std::set<std::optional<bool>>{std::nullopt, false, true}));
}

TEST_F(SampleMacTest, LoadsNoJobThatLaunchdWouldNotLoad) {
    const std::string loaded = "homebrew.mxcl.redis", leaving = "com.pebblewick.indexer";
    EXPECT_EQ(launchd(Command::launchctlBootout("gui/501", leaving)).exitCode, 36);
    const std::pair<fs::path, int> rows[] = {{fileOf(loaded), 17},
                                             {fileOf(leaving), 5},
                                             {fileOf("com.spotify.client.startuphelper"), 5},  // disabled
                                             {fileOf("org.millrace.feeds"), 5},  // without a label
                                             {fileOf("com.example.missing"), 5},
                                             {"/Library/LaunchAgents/of.another.sample.plist", 5}};
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

TEST_F(SampleMacTest, IsMadeInNoFolderOfSomethingElse) {
    fs::create_directory(folder.path / "empty");
    EXPECT_NO_THROW(SampleMac(folder.path / "empty"));

    setContents(folder.path / "home/Library/LaunchAgents/mine.plist", "mine");
    const auto before = everythingIn(folder.path);
    for (const char* name : {"home", "home/Library"})
        EXPECT_EQ(messageOf([&] { SampleMac(folder.path / name); }),
                  "The folder " + (folder.path / name).string() +
                      " is no sample Mac and not empty, so that none is made in it.");
    EXPECT_EQ(everythingIn(folder.path), before);
}

TEST_F(SampleMacTest, SaysThatItsStateIsDamagedAndKeepsIt) {
    const fs::path file = SimulatedLaunchd::stateFile(sample.systemRoot());
    const std::string whole = contentsOf(file);
    std::string otherType = whole;
    otherType.replace(otherType.find("<integer>"), 9, "<string>");
    otherType.replace(otherType.find("</integer>"), 10, "</string>");
    for (const std::string& damaged : {whole.substr(0, whole.size() / 2), std::string(),
                                       std::string("<plist><dict/></plist>"), otherType}) {
        setContents(file, damaged);
        EXPECT_TRUE(messageOf([&] {
                        launchd(Command::launchctlDisable("gui/501", "a"));
                    }).starts_with("The command could not be started: "));
        EXPECT_EQ(contentsOf(file), damaged);
    }
}

}  // namespace
}  // namespace brell
