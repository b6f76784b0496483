#include "CorvaneBrell/Model/JournalWords.h"

#include <gtest/gtest.h>

using namespace brell;

namespace {

JournalEntry agentThatWas(AgentOverride override, bool loaded) {
    JournalEntry entry{};
    entry.kind = EntryKind::launchAgent;
    entry.agent = AgentCapture{"com.acme.agent", "/Users/sam/a.plist", loaded, override};
    return entry;
}

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
    JournalEntry entry{};
    entry.writes = {{{"com.apple.dock", "autohide"}, {}, PrefValue(true)},
                    {{"com.apple.dock", "tilesize"}, PrefValue(36), {}}};
    EXPECT_EQ(JournalWords::keyLines(entry),
              (std::vector<std::string>{"com.apple.dock autohide: true; back to absent",
                                        "com.apple.dock tilesize: absent; back to 36"}));
    EXPECT_EQ(JournalWords::wayBack(entry), "autohide absent, tilesize 36");
    entry.writes.pop_back();
    EXPECT_EQ(JournalWords::wayBack(entry), "absent");

    const auto said = [](const JournalEntry& agent) { return JournalWords::keyLines(agent).front(); };
    EXPECT_EQ(said(agentThatWas(AgentOverride::absent, true)), "Turned off; back to on");
    EXPECT_EQ(said(agentThatWas(AgentOverride::enabled, false)), "Turned off; back to on, but not loaded");
    EXPECT_EQ(said(agentThatWas(AgentOverride::disabled, false)), "Turned on; back to off");
    EXPECT_EQ(said(agentThatWas(AgentOverride::disabled, true)), "Turned on; back to off, but still loaded");
}

TEST(JournalWordsTest, OnlyABeginningThatWasInterruptedIsTold) {
    using enum EntryStatus;
    const std::vector<HistoryLine> history{line(1, capturing), line(1, applied),   line(2, capturing),
                                           line(2, capturing), line(3, capturing), line(1, restored),
                                           line(2, restored),  line(4, capturing), line(4, failed)};
    // The second of entry 2, which a recovery ended; that of 3, which nothing ended.
    EXPECT_EQ(told(history),
              (std::vector<std::string>{"4 Failed: no reason was recorded.", "2 Restored", "1 Restored",
                                        "3 Interrupted", "2 Interrupted", "1 Applied"}));
    EXPECT_TRUE(told({}).empty());
    HistoryLine failure = history.back();
    failure.entry.failure = "The disk is full.";
    EXPECT_EQ(told({failure}), std::vector<std::string>{"4 Failed: The disk is full."});
}

}  // namespace
