#include "BrellCore/Background/ChangeTitles.h"

#include <gtest/gtest.h>

#include "Tests/Support/Entries.h"
#include "Tests/Support/Testing.h"

using namespace brell;
using namespace brell::testing;

TEST(ChangeTitlesTest, AnAgentIsCalledAsAmongTheLoginItemsAsFarAsThatIsKnown) {
    const TemporaryFolder home;
    const fs::path folder = home.path / "agents";
    const TweakCatalog catalog(home.path.string());
    ChangeTitles titles(catalog, AgentFolder(folder));
    const auto change = [&](const std::string& label, const fs::path& in) {
        const fs::path file = in / (label + ".plist");
        fs::create_directories(in);
        setContents(file,
                    "<plist><dict><key>Program</key><string>/Applications/Dusk Watch.app/Contents/MacOS/d"
                    "</string></dict></plist>");
        JournalEntry entry = agentEntry({label, file.string(), true, AgentOverride::absent});
        titles.learn(entry);
        return entry;
    };
    EXPECT_EQ(titles.of(entryOf("dock.size", {})), "Icon size");
    EXPECT_EQ(titles.of(change("us.zoom.updater", folder)), "Zoom");
    EXPECT_EQ(titles.of(change("com.acme.elsewhere", home.path)), "com.acme.elsewhere") << "never looked at";
    const JournalEntry dusk = change("com.acme.dusk", folder);
    EXPECT_EQ(titles.of(dusk), "Dusk Watch");
    LaunchAgentRecord job{{}, AgentScope::systemAgent, AgentOverride::absent, LoadedState::unknown()};
    job.plist.label = "com.acme.dusk";
    LoginItemRow row{"", "Dusk", "", LoginItemBadge::adminOnly, job, {}, {}, false, {}, true};
    titles.learn(std::vector{row});
    EXPECT_EQ(titles.of(dusk), "Dusk Watch") << "another's may have the same label";
    row.record->scope = AgentScope::user;
    titles.learn(std::vector{row});
    EXPECT_EQ(titles.of(dusk), "Dusk");
}
