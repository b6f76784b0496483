#include "CorvaneBrell/Model/EntryWords.h"

#include <gtest/gtest.h>

#include "BrellCore/Background/AgentSteps.h"
#include "BrellCore/Support/Text.h"
#include "Tests/Support/EngineFixture.h"
#include "Tests/Support/Entries.h"

using namespace brell;
using namespace brell::testing;

namespace {

// Lines of entries that are told apart by one digit, which is what they are called, too.
HistoryLine line(unsigned char entry, EntryStatus event) {
    HistoryLine line{};
    line.event = event;
    line.entry.id.bytes[0] = entry;
    line.entry.tweakID = std::to_string(entry);
    line.entry.writes.resize(1);
    return line;
}

std::vector<std::string> told(const std::vector<HistoryLine>& history) {
    const TweakCatalog catalog("/Users/sam");
    const ChangeTitles titles(catalog);
    std::vector<std::string> texts;
    for (const ToldLine& line : toldHistory(history, titles)) texts.push_back(line.title + " " + line.words);
    return texts;
}

TEST(EntryWordsTest, EveryChangeSaysWhatWasDoneAndWhereTheWayBackLeads) {
    JournalEntry entry = entryOf("dock", {{{"com.apple.dock", "autohide"}, {}, PrefValue(true)},
                                          {{"com.apple.dock", "tilesize"}, PrefValue(36), {}}});
    EXPECT_EQ(changeLines(entry), (Texts{"com.apple.dock autohide: true; back to absent",
                                         "com.apple.dock tilesize: absent; back to 36"}));
    EXPECT_EQ(wayBack(entry), "autohide absent, tilesize 36");
    entry.writes.pop_back();
    EXPECT_EQ(wayBack(entry), "absent");
    EXPECT_EQ(originWords(entry, "/Users/sam", "26.1.0"), std::nullopt);
    EXPECT_EQ(originWords(entry, "/Users/sam", "27.0.0"), "Made on macOS 26.1.0; this Mac now runs 27.0.0.");
    EXPECT_EQ(cameFromElsewhere(entry, "/Users/sam", "27.0.0"), std::nullopt);
    entry = agentEntry({"a", "/Users/jo/a.plist", true, AgentOverride::absent});
    EXPECT_EQ(
        originWords(entry, "/Users/sam", "26.0.1"),
        "Its file /Users/jo/a.plist lies outside your home folder. It was made on macOS 26.1.0, which is "
        "newer than this Mac's 26.0.1. It may have come from another Mac or account.");

    const auto said = [](AgentOverride before, bool wasLoaded) {
        return changeLines(agentEntry({"a", "/a.plist", wasLoaded, before})).front();
    };
    EXPECT_EQ(said(AgentOverride::absent, true), "a: off; back to on");
    EXPECT_EQ(said(AgentOverride::enabled, false), "a: off; back to on, but not loaded");
    EXPECT_EQ(said(AgentOverride::disabled, false), "a: on; back to off");
    EXPECT_EQ(said(AgentOverride::disabled, true), "a: on; back to off, but still loaded");
}

// A journal may be another program's.
TEST(EntryWordsTest, WhatAJournalSaysIsToldInOneLineAndCut) {
    const std::string evil = "Apple\n\u202E" + std::string(100'000, 'x');
    JournalEntry entry = entryOf(evil, {{{evil, evil}, PrefValue(evil), PrefValue(evil)}});
    JournalEntry off = agentEntry({evil, evil, true, AgentOverride::absent});
    for (JournalEntry* one : {&entry, &off}) {
        one->macOSVersion = evil;
        one->failure = evil;
    }
    const TweakCatalog catalog("/Users/sam");
    const ChangeTitles titles(catalog);
    const KeyReading key{entry.writes.front(), StoredValue(PrefValue("a\n" + evil))};
    Texts texts = driftedEntry(entry, {key}, catalog).lines;
    for (const Texts& more :
         {changeLines(entry), putBackLines(entry),
          driftedAgent(off, {AgentOverride::enabled, LoadedState::notLoaded()}).value().lines,
          Texts{wayBack(entry), titles.of(entry), titles.of(off), *failureWords(off),
                *originWords(entry, "/", "27.0.0"), *cameFromElsewhere(off, "/a", "1"), proofLine(key),
                undoProof({entry}, {key}, {titles.of(entry)}, titles)->words,
                toldHistory({{{}, EntryStatus::failed, off}}, titles).front().words}})
        texts.insert(texts.end(), more.begin(), more.end());
    entry.writes.push_back(entry.writes.front());
    texts.push_back(wayBack(entry));
    for (const std::string& text : texts) {
        EXPECT_EQ(text, oneLine(text));
        EXPECT_LT(text.size(), 3000u) << text.substr(0, 60);
    }
}

TEST(EntryWordsTest, TheHistoryTellsTheValuesAndOnlyABeginningThatWasInterrupted) {
    using enum EntryStatus;
    std::vector<HistoryLine> history{line(1, capturing), line(1, applied),   line(2, capturing),
                                     line(2, capturing), line(3, capturing), line(1, restored),
                                     line(2, restored),  line(4, capturing), line(4, failed)};
    const JournalEntry size =
        entryOf("dock.size", {{{"com.apple.dock", "tilesize"}, PrefValue(41), PrefValue(36)}});
    const JournalEntry agent = agentEntry({"com.acme.agent", "/a.plist", true, AgentOverride::absent});
    history.insert(history.end(), {{{}, applied, size}, {{}, restored, size}});
    // On a journey to the west a later day has the earlier name.
    history.insert(history.begin(), {{noon, applied, agent}, {noon, restored, agent}});
    // The second of entry 2, which a recovery ended; that of 3, which nothing ended.
    EXPECT_EQ(told(history),
              (Texts{"com.acme.agent back to on", "com.acme.agent turned off", "Icon size back to 41",
                     "Icon size Small, was 41", "4 failed. No reason was recorded.", "2 back as it was",
                     "1 back as it was", "3 interrupted", "2 interrupted", "1 1 key was changed"}));
    HistoryLine failure = line(4, failed);
    failure.entry.failure = "The disk is full.";
    EXPECT_EQ(told({failure}), Texts{"4 failed. The disk is full."});
    failure.event = restored;
    EXPECT_EQ(told({failure}), Texts{"4 The disk is full."}) << "it says what is so";
}

class KeyReadingsTest : public ::testing::Test, protected EngineFixture {
protected:
    // Two keys: one was false, one absent.
    JournalEntry magnify() {
        files.write(false, magnification);
        return engine.apply(tweak("dock.magnify"));
    }
    void prove(const std::vector<JournalEntry>& entries, const Texts& alreadyBack = {}) {
        const auto proof = undoProof(entries, readKeys(entries, store), alreadyBack, titles);
        said += (proof->isComplete ? "+ " : "- ") + proof->words + "\n";
    }
    void describe(const JournalEntry& entry) {
        const DriftedEntry drifted = driftedEntry(entry, readKeys(entry, store), catalog);
        said += drifted.words + "\n";
        for (const std::string& line : drifted.lines) said += "    " + line + "\n";
    }

    ChangeTitles titles{catalog};
    std::string said;
};

TEST_F(KeyReadingsTest, AnUndoIsProvedKeyByKey) {
    const JournalEntry entry = magnify();
    EXPECT_EQ(undoProof({}, {}, {}, titles), std::nullopt);
    engine.restore(entry.id, false);
    prove({entry});
    prove({entry}, {"Magnify"});
    JournalEntry agent = agentEntry({"com.acme.agent", "/a.plist", true, AgentOverride::absent});
    prove({agent});
    prove({entry, agent});
    agent.failure = "There was nothing to load.";
    prove({agent});
    files.write(0, magnification);  // not a truth value
    prove({entry});
    files.markUnsupported(largeSize);
    prove({entry});
    prove({engine.apply(tweak("dock.size"))});
    EXPECT_EQ(said, sample("Words/undo-proofs.txt"));
}

TEST_F(KeyReadingsTest, EveryDriftedKeyIsDescribedAndNoOther) {
    const JournalEntry entry = magnify();
    describe(entry);
    files.remove(magnification);
    describe(entry);
    files.write("big", largeSize);
    files.markUnsupported(magnification);
    describe(entry);
    const JournalEntry back = engine.apply(tweak("dock.autohide"));
    files.remove(back.writes[0].key);
    describe(back);
    EXPECT_EQ(said, sample("Words/drift.txt"));
}

TEST(AgentDriftTest, ComparesWithWhatTheSwitchLeft) {
    const AgentState off{AgentOverride::disabled, LoadedState::notLoaded()};
    const AgentState on{AgentOverride::enabled, {LoadedState::Kind::loaded, "running", {}, {}, {}}};
    JournalEntry turnedOff = agentEntry({"a", "/Users/sam/a.plist", true, AgentOverride::absent});
    const JournalEntry turnedOn = agentEntry({"a", "/Users/sam/a.plist", false, AgentOverride::disabled});

    EXPECT_EQ(driftedAgent(turnedOff, off), std::nullopt);
    EXPECT_EQ(driftedAgent(turnedOn, on), std::nullopt);
    EXPECT_EQ(driftedAgent(turnedOn, {on.override, LoadedState::unknown()}), std::nullopt);
    EXPECT_TRUE(driftedAgent(turnedOff, {off.override, on.loaded}));
    EXPECT_TRUE(driftedAgent(turnedOff, {AgentOverride::absent, off.loaded}));
    EXPECT_EQ(driftedAgent(turnedOff, on)->lines,
              Texts{"a: now override enabled, loaded; Brell left override disabled, not loaded; original "
                    "override absent, loaded"});
    EXPECT_EQ(driftedAgent(turnedOn, {on.override, off.loaded})->lines,
              Texts{"a: now override enabled, not loaded; Brell left override enabled, loaded; original "
                    "override disabled, not loaded"});
    turnedOff.status = EntryStatus::capturing;  // nobody can say what an interrupted one left
    EXPECT_EQ(driftedAgent(turnedOff, on), std::nullopt);
}

}  // namespace
