// A journal that can't be read any more, and its history.
#include <gtest/gtest.h>

#include "BrellCore/Journal/Journal.h"
#include "BrellCore/Journal/JournalRebuild.h"
#include "BrellCore/Journal/RestoreScript.h"
#include "Tests/Support/Entries.h"
#include "Tests/Support/Obstacles.h"
#include "Tests/Support/SystemCalls.h"
#include "Tests/Support/Testing.h"

namespace brell {

namespace {

using namespace testing;
using namespace std::chrono_literals;

bool toTheEnd(std::uintmax_t, std::uintmax_t) {
    return true;
}

JournalEntry changed(JournalEntry entry, EntryStatus status) {
    entry.status = status;
    return entry;
}

class JournalRebuildTest : public ::testing::Test {
protected:
    JournalRebuildTest() {
        keepFoldersInMemory();
        setContents(elsewhere / "victim", "somebody else's");
        setContents(script, "as it was");
    }

    // The folder's names, without the lock and the history.
    Names names() const {
        Names found = namesIn(directory);
        for (const char* other : {".journal.lock", "history"}) found.erase(other);
        return found;
    }
    RebuildPlan plan() const { return planRebuild(directory, toTheEnd).value(); }
    Rebuilt rebuild() const { return rebuildJournal(directory, plan(), toTheEnd, clock).value(); }
    std::string refusal() const {
        return messageOf([&] { rebuild(); });
    }

    const TemporaryFolder folder;
    const fs::path directory = folder.path / "brell", elsewhere = folder.path / "elsewhere";
    const fs::path file = directory / "journal.json", script = directory / RestoreScript::fileName;
    const Clock clock = [] { return at("2026-11-22T15:30:00Z"); };
    const std::string moment = localMoment(clock());
    const Entries entries = [this] {
        const auto journal = Journal::open(directory, clock);
        const JournalEntry a = entryFor("a"), b = entryFor("b"), c = entryFor("c", EntryStatus::failed);
        for (const JournalEntry& entry :
             {a, b, changed(b, EntryStatus::applied), c, changed(a, EntryStatus::restored)})
            journal->upsert(entry);
        for (const JournalEntry& entry : sampleEntries()) journal->upsert(entry);
        return journal->all();
    }();
};

}  // namespace

TEST_F(JournalRebuildTest, TheLastLineOfEachEntryIsThePlan) {
    const RebuildPlan whole = plan();
    EXPECT_EQ(whole, (RebuildPlan{entries, {}, clock(), clock(), 0, 0, {}, 0, entries.size()}));
    EXPECT_EQ(whole.active(), (Entries{entries[1], entries[3]}));

    // The lines that ended the first two are missing.
    Entries several{entryFor("a"), entryFor("b"), entryFor("a", EntryStatus::applied), entryFor("a"),
                    entryFor("c", EntryStatus::failed)};
    for (JournalEntry& entry : several) entry.appliedAt = noon + std::chrono::hours(&entry - &several[0]);
    HistoryReading history{{}, 2, 1, {"unread"}};
    for (const JournalEntry& entry : several) history.lines.push_back({entry.appliedAt, entry.status, entry});
    std::swap(history.lines[0].at, history.lines[1].at);
    // The day of its end has the earlier name, as on a journey to the west.
    history.lines.push_back({noon, EntryStatus::capturing, changed(several[4], EntryStatus::capturing)});
    const RebuildPlan made = planRebuild(history);
    for (const std::size_t i : {0u, 2u}) {
        several[i].status = EntryStatus::restored;
        several[i].restoredAt = several[3].appliedAt;
        several[i].failure = made.entries[i].failure;
        EXPECT_TRUE(several[i].failure);
    }
    EXPECT_EQ(
        made,
        (RebuildPlan{
            several, {several[0].id, several[2].id}, noon, noon + std::chrono::hours(4), 2, 1, {"unread"}}));
}

TEST_F(JournalRebuildTest, AJournalThatWasBegunAnewKnowsLaterChangesAndWhatTheHistoryLost) {
    const auto write = [](const char* key, int original, int written) {
        return JournaledWrite{{"com.apple.dock", key}, PrefValue(original), PrefValue(written)};
    };
    // Of one second, so that what each found tells which was first; of the second key the user has chosen.
    const JournalEntry older = entryOf("a", {write("one", 1, 2), write("two", 1, 2)});
    JournalEntry later = entryOf("a", {write("one", 2, 3), write("two", 7, 3)});
    const JournalEntry off = agentEntry({"b", "/b.plist", false, AgentOverride::absent}, noon);
    JournalEntry on = agentEntry({"b", "/b.plist", false, AgentOverride::disabled}, noon + 1h);
    const JournalEntry ended = agentEntry({"c", "/c.plist", true, AgentOverride::absent}, noon);
    const JournalEntry back = agentEntry({"c", "/c.plist", false, AgentOverride::disabled}, noon + 1h);
    Entries known{changed(later, EntryStatus::capturing), on, back};
    const auto made = [&known, told = Entries{older, later, off, ended}] {
        std::vector<HistoryLine> lines;
        for (const JournalEntry& entry : told) lines.push_back({noon, entry.status, entry});
        RebuildPlanner planner;
        planner.know(known);
        planner.take(lines);
        return std::move(planner).finish({});
    };
    const RebuildPlan first = made();
    EXPECT_EQ(first.overtaken, (std::vector{older.id, off.id, ended.id}));
    EXPECT_EQ(first.handedOn, 3u);
    later.writes[0].original = PrefValue(1);
    on.agent = off.agent;
    EXPECT_EQ(first.active(), (Entries{later, on}));
    known = first.entries;  // the history still tells what the later one found
    EXPECT_EQ(made().entries, known);
}

TEST_F(JournalRebuildTest, TheLastOfSeveralLeadsBackOverThoseThatWereInForce) {
    const auto originalOfTheLast = [](std::vector<std::pair<int, int>> changes) {
        HistoryReading history;
        for (const auto& [original, written] : changes) {
            JournalEntry entry =
                entryOf("a", {{{"com.apple.dock", "one"}, PrefValue(original), PrefValue(written)}});
            entry.appliedAt += std::chrono::hours(history.lines.size());
            history.lines.push_back({entry.appliedAt, entry.status, entry});
        }
        const RebuildPlan made = planRebuild(history);
        EXPECT_EQ(made.active(), Entries{made.entries.back()});
        return made.active().at(0).writes[0].original;
    };
    EXPECT_EQ(originalOfTheLast({{1, 2}, {2, 3}, {3, 4}}), PrefValue(1));
    EXPECT_EQ(originalOfTheLast({{1, 2}, {2, 3}, {2, 4}}), PrefValue(1)) << "the second had ended";
    EXPECT_EQ(originalOfTheLast({{1, 2}, {7, 1}}), PrefValue(7)) << "the user wanted that back";
}

TEST_F(JournalRebuildTest, AKeyThatOnlyTheOvertakenOneWroteJoinsTheLater) {
    using Writes = std::vector<JournaledWrite>;
    const auto write = [](const char* key, int original, int written) {
        return JournaledWrite{{"com.apple.dock", key}, PrefValue(original), PrefValue(written)};
    };
    const auto writesOfTheLast = [&](Writes later, EntryStatus status = EntryStatus::applied) {
        const JournalEntry first = entryOf("a", {write("one", 1, 2), write("two", 1, 2)});
        const JournalEntry last = changed(entryOf("a", std::move(later), noon + 1h), status);
        const std::vector<HistoryLine> lines{{noon, first.status, first}, {noon, status, last}};
        return planRebuild({lines, 0, 0, {}}).active().at(0).writes;
    };
    EXPECT_EQ(writesOfTheLast({write("one", 2, 3)}), (Writes{write("one", 1, 3), write("two", 1, 2)}));
    EXPECT_EQ(writesOfTheLast({write("three", 5, 6)}),
              (Writes{write("three", 5, 6), write("one", 1, 2), write("two", 1, 2)}));
    EXPECT_EQ(writesOfTheLast({write("one", 7, 3)}), Writes{write("one", 7, 3)}) << "the first had ended";
    EXPECT_EQ(writesOfTheLast({write("one", 2, 3)}, EntryStatus::capturing), Writes{write("one", 1, 3)})
        << "recovery asks about no value";
}

TEST_F(JournalRebuildTest, WhateverStandsInItsPlaceIsKeptAndReplaced) {
    const auto check = [&](const std::string& name) {
        SCOPED_TRACE(name);
        ASSERT_FALSE(journalDamage(directory).value().empty());
        const auto others = everythingIn(elsewhere);
        const fs::file_type type = fs::symlink_status(file).type();
        const bool isText = type == fs::file_type::regular && fs::file_size(file) < 10'000;
        const std::string text = isText ? contentsOf(file) : "";
        const Rebuilt rebuilt = rebuild();

        const fs::path aside = file.string() + ".damaged-" + moment;
        const fs::path copy = script.string() + ".before-" + moment;
        EXPECT_EQ(rebuilt, (Rebuilt{aside, copy, std::nullopt}));
        EXPECT_EQ(names(), (Names{"journal.json", aside.filename(), "restore.sh", copy.filename()}));
        EXPECT_EQ(fs::symlink_status(aside).type(), type);
        EXPECT_EQ(isText ? contentsOf(aside) : "", text);
        EXPECT_EQ(Journal::open(directory)->all(), entries);
        EXPECT_EQ(contentsOf(copy), "as it was");
        EXPECT_EQ(contentsOf(script), RestoreScript::render(entries, clock()));
        EXPECT_EQ(everythingIn(elsewhere), others);
        EXPECT_EQ(journalDamage(directory), std::nullopt);

        fs::remove_all(aside);
        fs::remove(copy);
        setContents(script, "as it was");
    };
    const std::string whole = contentsOf(file);
    for (const std::string& text : {std::string(), std::string(whole.size(), '\0'), whole.substr(0, 500),
                                    whole + "}", std::string("{}")}) {
        setContents(file, text);
        check("\"" + text.substr(0, 20) + "\" of " + std::to_string(text.size()) + " bytes");
    }
    if (systemCallsAreWatched()) {
        const FailingCall noLinks(directory, SystemCall::link, EPERM);  // as some file systems have none
        setContents(file, "");
        check("a file that can't have two names");
        EXPECT_TRUE(noLinks.hasFailed());
    }
    for (const Obstacle obstacle : obstacles) {
        if (obstacle == Obstacle::linkToNothing) continue;
        place(obstacle, file, elsewhere);
        check(nameOf(obstacle));
    }
}

TEST_F(JournalRebuildTest, WhatWasKeptBeforeIsNeverReplaced) {
    RestoreScript::save(script, RestoreScript::render({}, clock()));  // nothing to keep
    for (const char* ending : {"", "-2", "-3"}) {
        setContents(file, ending);
        EXPECT_EQ(rebuild(),
                  (Rebuilt{file.string() + ".damaged-" + moment + ending, std::nullopt, std::nullopt}));
        EXPECT_EQ(contentsOf(file.string() + ".damaged-" + moment + ending), ending);
        fs::remove(script);
    }
    if (!systemCallsAreWatched()) return;
    const std::string next = file.string() + ".damaged-" + moment + "-4";
    const EachCall meanwhile(next, before(SystemCall::link, [&] { setContents(next, "somebody else's"); }));
    setContents(file, "");
    EXPECT_EQ(rebuild().before, file.string() + ".damaged-" + moment + "-5");
    EXPECT_EQ(contentsOf(next), "somebody else's");
}

TEST_F(JournalRebuildTest, OnlyADamagedOneIsRebuiltAndOnlyAsConfirmed) {
    const std::string whole = contentsOf(file), begin = "The change journal could not be rebuilt: ";
    const auto check = [&](const std::string& expected) {
        const auto before = everythingIn(directory);
        EXPECT_EQ(refusal(), expected);
        EXPECT_EQ(everythingIn(directory), before);
    };
    check(begin + "it is not damaged. Nothing was lost.");
    fs::remove(file);
    check(begin + "it is not damaged. Nothing was lost.");
    fs::create_symlink("nowhere", file);
    check("The change journal could not be read: " + file.string() +
          ": it is a link to a file that is not there.");
    fs::remove(file);
    setContents(file, "{\"entries\":[{}],\"format\":2}");
    check(
        "The change journal could not be read: the journal was written by a newer Brell (format 2); update "
        "Brell before changing anything.");

    setContents(file, "damaged");
    for (const fs::path& place : {directory, directory / "history", file}) {
        const fs::perms before = fs::status(place).permissions();
        fs::permissions(place, fs::perms::others_write, fs::perm_options::add);
        check(
            "The change journal could not be read: " + place.string() +
            " can be written by every user of this Mac, so that others could choose what an undo puts back.");
        fs::permissions(place, before);
    }
    Journal::markForDryRun(directory);
    check("The change journal could not be read: " + (directory / "dry-run.txt").string() +
          " says that it is a dry run's, whose changes were never made.");
    fs::remove(directory / "dry-run.txt");
    if (systemCallsAreWatched()) {
        const FailingCall failing(file, SystemCall::open, EACCES);
        EXPECT_EQ(refusal(),
                  "The change journal could not be read: " + file.string() + ": Permission denied.");
    }
    if (systemCallsAreWatched()) {
        const FailingCall failing(file, SystemCall::open, EIO);
        EXPECT_EQ(journalDamage(directory), "Input/output error");
    }
    const RebuildPlan confirmed = plan();
    std::uintmax_t told = 0;
    EXPECT_EQ(planRebuild(directory, [&](auto, auto total) { return told = total, false; }), std::nullopt);
    EXPECT_EQ(rebuildJournal(directory, confirmed, [](auto, auto) { return false; }), std::nullopt);
    EXPECT_EQ(told, fs::file_size(directory / "history" / (localDay(clock()) + ".jsonl")));
    appendHistoryLine(directory / "history", clock(), entryFor("d"));
    EXPECT_EQ(messageOf([&] { rebuildJournal(directory, confirmed, toTheEnd); }),
              begin + "its history tells something else than before. Nothing was lost.");
    fs::remove_all(directory / "history");
    check(begin + "its history holds no change. Nothing was lost.");
}

// The one state in which there is no journal: it must not count as a first start.
TEST_F(JournalRebuildTest, AFolderThatLeftItsPlaceIsNoFirstStart) {
    if (!systemCallsAreWatched()) GTEST_SKIP();
    place(Obstacle::folder, file, elsewhere);
    {
        const FailingCall failing(file, SystemCall::rename, ENOSPC);
        EXPECT_EQ(refusal(), "The change journal could not be rebuilt: " + file.string() +
                                 ": No space left on device. Nothing was lost.");
        EXPECT_TRUE(failing.hasFailed());
    }
    EXPECT_EQ(names(), (Names{"journal.json.rebuilding", std::string("journal.json.damaged-") + moment,
                              "restore.sh"}));
    EXPECT_EQ(messageOf([&] { Journal::open(directory); }),
              "The change journal could not be read: " + file.string() + ": its rebuilding was interrupted.");
    EXPECT_EQ(rebuild().before, std::nullopt);
    EXPECT_EQ(Journal::open(directory)->all(), entries);
    EXPECT_FALSE(names().contains("journal.json.rebuilding"));

    // One that can be read never leaves it: it may hold what the history has lost.
    fs::remove_all(directory / "history");
    setContents(script, "# lost (applied 2026-01-02T03:04:05Z)\n");
    const FailingCall noLinks(directory, SystemCall::link, EPERM);
    const FailingCall failing(file, SystemCall::rename, ENOSPC);
    EXPECT_NE(refusal(), "");
    EXPECT_TRUE(noLinks.hasFailed() && failing.hasFailed());
    EXPECT_EQ(contentsOf(file.string() + ".before-" + moment), contentsOf(file));
    EXPECT_EQ(journalDamage(directory), std::nullopt);
}

TEST_F(JournalRebuildTest, AScriptThatCannotBeKeptIsLeftAlone) {
    setContents(file, "");
    place(Obstacle::folder, script, elsewhere);
    const Rebuilt rebuilt = rebuild();
    EXPECT_EQ(rebuilt.scriptFailure,
              "The file " + script.string() + " could not be read: it is not an ordinary file.");
    EXPECT_TRUE(fs::is_directory(script));
    EXPECT_EQ(Journal::open(directory)->all(), entries);
    if (!systemCallsAreWatched()) return;
    fs::remove_all(script);
    setContents(script, "as it was");
    setContents(file, "");
    const std::string copy = script.string() + ".before-" + moment;
    const FailingCall failing(copy, SystemCall::lstat, EIO);
    EXPECT_EQ(rebuild().scriptFailure, "The file " + copy + " could not be read: Input/output error.");
}

}  // namespace brell
