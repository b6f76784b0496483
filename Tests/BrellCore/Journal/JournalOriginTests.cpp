#include "BrellCore/Journal/JournalOrigin.h"

#include <gtest/gtest.h>

#include "Tests/Support/Entries.h"
#include "Tests/Support/Testing.h"

namespace brell {

TEST(JournalOriginTest, TellsWhatWasMadeInAnotherHomeOrOnANewerMacOS) {
    std::vector<JournalEntry> entries;
    std::vector<ForeignEntry> expected;
    for (const testing::Texts& row : testing::sampleRows("Journal/origins.txt")) {
        entries.push_back(testing::agentEntry({"a", row[0], true, AgentOverride::absent}));
        entries.back().macOSVersion = row[1];
        const bool isElsewhere = row[2] == "elsewhere", isNewer = row[3] == "newer";
        if (isElsewhere || isNewer) expected.push_back({entries.back().id, isElsewhere, isNewer});
    }
    ASSERT_EQ(entries.size(), 11u);
    entries.push_back(testing::entryOf("dock.size", {}));
    EXPECT_EQ(foreignEntries(entries, "/Users/sam", "26.1.0"), expected);

    std::erase_if(expected, [](const ForeignEntry& entry) { return !entry.agentLiesElsewhere; });
    for (ForeignEntry& entry : expected) entry.macOSIsNewer = false;
    EXPECT_EQ(foreignEntries(entries, "/Users/sam", "unknown"), expected);
}

}  // namespace brell
