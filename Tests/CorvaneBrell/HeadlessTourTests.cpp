#include <gtest/gtest.h>

#include "CorvaneBrell/HeadlessTour.h"

#include <sstream>

#include "BrellCore/Journal/Journal.h"
#include "CorvaneBrell/Dependencies.h"
#include "CorvaneBrell/HeadlessCommands.h"
#include "CorvaneBrell/SampleMac/SampleMac.h"
#include "Tests/Support/Testing.h"

using namespace brell;
using namespace brell::testing;

namespace {

TEST(HeadlessTourTest, ShowsTheWholeCycleAndLeavesTheMacAsItWas) {
    keepFoldersInMemory();
    const TemporaryFolder folder;
    LaunchOptions options;
    options.sampleMac = folder.path;
    const SampleMac mac(folder.path);
    const auto original = mac.openPreferences()->snapshot();

    {  // an earlier run left a change behind
        std::ostringstream quiet;
        Dependencies earlier(options, quiet);
        earlier.engine.apply(*earlier.catalog.tweak("dock.size"));
    }

    std::ostringstream out;
    EXPECT_EQ(runHeadlessTour(options, out), ExitStatus::success);
    for (const char* line :
         {"\nrestored ", "\napplied finder.show_hidden\n", "\napplied priv.no_personalized_ads\n",
          "  dock.size                      onByBrell    48\n", " keys are exactly as before.\n"})
        EXPECT_NE(out.str().find(line), std::string::npos) << line;
    EXPECT_EQ(mac.openPreferences()->snapshot(), original);
    const std::filesystem::path directory = Journal::defaultDirectory(mac.home());
    EXPECT_NE(out.str().find("Restore script: " + (directory / "restore.sh").string() + "\n"),
              std::string::npos);
    EXPECT_NE(contentsOf(directory / "corvane-brell-report.md").find("| restored | Icon size |"),
              std::string::npos);
}

TEST(HeadlessTourTest, AMacThatCannotBeMadeIsAnErrorOnOneLine) {
    const TemporaryFolder folder;
    setContents(folder.path / "file", "in the way");
    LaunchOptions options;
    options.sampleMac = folder.path / "file" / "mac";
    std::ostringstream out;
    EXPECT_EQ(runHeadlessTour(options, out), ExitStatus::cannotStart);
    EXPECT_TRUE(out.str().starts_with("error: ") && out.str().find('\n') == out.str().size() - 1)
        << out.str();
}

}  // namespace
