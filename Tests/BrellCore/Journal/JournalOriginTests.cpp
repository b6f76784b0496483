#include "BrellCore/Journal/JournalOrigin.h"

#include <gtest/gtest.h>

#include "Tests/Support/Entries.h"

namespace brell {

TEST(JournalOriginTest, TellsWhatWasMadeInAnotherHomeOrOnANewerMacOS) {
    const struct {
        const char *plistPath, *version;
        bool elsewhere, newer;
    } rows[] = {
        {"/Users/sam/Library/LaunchAgents/a.plist", "26.1.0", false, false},
        {"/Users/sam/a.plist", "26.0.9", false, false},
        {"/Users/sammy/Library/LaunchAgents/a.plist", "15.7.2", true, false},
        {"/Users/sam/../jo/Library/LaunchAgents/a.plist", "26.1", true, false},
        {"/Users/sam/..a/a.plist", "26.1.1", false, true},
        {"a.plist", "26.10.0", true, true},
        {"/Users/sam/a.plist", "27", false, true},
        {"/Users/sam/a.plist", "27.x", false, false},
        {"/Users/sam/a.plist", "26.2.", false, false},
        {"/Users/sam/a.plist", "", false, false},
        {"/Users/sam/a.plist", "99999999999.0.0", false, false},
    };
    std::vector<JournalEntry> entries;
    std::vector<ForeignEntry> expected;
    for (const auto& row : rows) {
        entries.push_back(testing::agentEntry({"a", row.plistPath, true, AgentOverride::absent}));
        entries.back().macOSVersion = row.version;
        if (row.elsewhere || row.newer) expected.push_back({entries.back().id, row.elsewhere, row.newer});
    }
    entries.push_back(testing::entryOf("dock.size", {}));
    EXPECT_EQ(foreignEntries(entries, "/Users/sam", "26.1.0"), expected);

    std::erase_if(expected, [](const ForeignEntry& entry) { return !entry.agentLiesElsewhere; });
    for (ForeignEntry& entry : expected) entry.macOSIsNewer = false;
    EXPECT_EQ(foreignEntries(entries, "/Users/sam", "unknown"), expected);
}

}  // namespace brell
