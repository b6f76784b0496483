#include "CorvaneBrell/Model/JournalWords.h"

#include <gtest/gtest.h>

#include "Tests/Support/Entries.h"
#include "Tests/Support/Testing.h"

using namespace brell;
using namespace brell::testing;

namespace {

// Lines of entries that are told apart by one digit, which is what they are called, too.
HistoryLine line(unsigned char entry, EntryStatus event) {
    HistoryLine line{};
    line.event = event;
    line.entry.id.bytes[0] = entry;
    line.entry.tweakID = std::to_string(entry);
    return line;
}

std::vector<std::string> told(const std::vector<HistoryLine>& history) {
    std::vector<std::string> texts;
    for (const ToldLine& line : JournalWords::told(history, TweakCatalog("/Users/sam")))
        texts.push_back(line.title + " " + line.words);
    return texts;
}

TEST(JournalWordsTest, EveryChangeSaysWhatWasDoneAndWhereTheWayBackLeads) {
    JournalEntry entry = entryOf("dock", {{{"com.apple.dock", "autohide"}, {}, PrefValue(true)},
                                          {{"com.apple.dock", "tilesize"}, PrefValue(36), {}}});
    EXPECT_EQ(JournalWords::keyLines(entry), (Texts{"com.apple.dock autohide: true; back to absent",
                                                    "com.apple.dock tilesize: absent; back to 36"}));
    EXPECT_EQ(JournalWords::wayBack(entry), "autohide absent, tilesize 36");
    entry.writes.pop_back();
    EXPECT_EQ(JournalWords::wayBack(entry), "absent");

    const auto said = [](AgentOverride before, bool wasLoaded) {
        return JournalWords::keyLines(agentEntry({"a", "/a.plist", wasLoaded, before})).front();
    };
    EXPECT_EQ(said(AgentOverride::absent, true), "Turned off; back to on");
    EXPECT_EQ(said(AgentOverride::enabled, false), "Turned off; back to on, but not loaded");
    EXPECT_EQ(said(AgentOverride::disabled, false), "Turned on; back to off");
    EXPECT_EQ(said(AgentOverride::disabled, true), "Turned on; back to off, but still loaded");
}

TEST(JournalWordsTest, OnlyABeginningThatWasInterruptedIsTold) {
    using enum EntryStatus;
    const std::vector<HistoryLine> history{line(1, capturing), line(1, applied),   line(2, capturing),
                                           line(2, capturing), line(3, capturing), line(1, restored),
                                           line(2, restored),  line(4, capturing), line(4, failed)};
    // The second of entry 2, which a recovery ended; that of 3, which nothing ended.
    EXPECT_EQ(told(history), (Texts{"4 Failed: no reason was recorded.", "2 Restored", "1 Restored",
                                    "3 Interrupted", "2 Interrupted", "1 Applied"}));
    EXPECT_TRUE(told({}).empty());
    HistoryLine failure = history.back();
    failure.entry.failure = "The disk is full.";
    EXPECT_EQ(told({failure}), Texts{"4 Failed: The disk is full."});
}

}  // namespace
