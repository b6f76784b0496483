#include "BrellCore/Journal/History.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <ctime>

#include "BrellCore/Journal/HistoryText.h"
#include "BrellCore/Journal/Journal.h"
#include "Tests/Support/Entries.h"
#include "Tests/Support/Testing.h"

namespace brell {

namespace {

using namespace testing;
using Lines = std::vector<HistoryLine>;

bool neverStopped(Lines&, std::uintmax_t, std::uintmax_t) {
    return true;
}

class HistoryTest : public ::testing::Test {
protected:
    HistoryTest() { setZone("UTC0"); }
    ~HistoryTest() override { setZone(zoneBefore); }

    // The machine's time zone, in the form of TZ.
    static void setZone(const std::string& zone) {
        zone.empty() ? ::unsetenv("TZ") : ::setenv("TZ", zone.c_str(), 1);
        ::tzset();
    }

    const std::string zoneBefore = std::getenv("TZ") ? std::getenv("TZ") : "";
    const TemporaryFolder folder;
    const fs::path history = folder.path / "made" / "history";
    const fs::path day = history / "2026-11-16.jsonl";
    const std::string sample = testing::sample("History/format-1.jsonl");
    const HistoryLine line{at("2026-11-16T00:00:01Z"), EntryStatus::restored, sampleEntries()[1]};

    Lines all() const { return readHistory(history, std::nullopt); }
    HistoryReading lastOfAll() const { return readLastOfHistory(history, neverStopped); }
    std::string unreadable(const char* name) const {
        return "The file " + (history / name).string() + " could not be read: it is not an ordinary file.";
    }
};

}  // namespace

TEST_F(HistoryTest, TheSampleLineIsReadAndWrittenToTheByte) {
    EXPECT_TRUE(appendHistoryLine(history, line.at, line.entry));
    EXPECT_EQ(contentsOf(day), sample);
    EXPECT_TRUE(appendHistoryLine(history, line.at, line.entry));
    EXPECT_EQ(contentsOf(day), sample + sample);
    EXPECT_EQ(all(), (Lines{line, line}));
    EXPECT_EQ(line.id(), "FEDCBA98-7654-3210-FEDC-BA9876543210-restored-1794787201");
}

TEST_F(HistoryTest, EachLocalDayHasItsFileAndTheyAreReadInOrder) {
    for (const auto& [zoneText, name, moment] :
         {std::tuple("EAST-14", "2026-11-16.jsonl", "2026-11-16-100304"),
          {"WEST12", "2026-11-15.jsonl", "2026-11-15-080304"}}) {
        setZone(zoneText);
        EXPECT_TRUE(appendHistoryLine(folder.path / zoneText, at("2026-11-15T20:23:13Z"), line.entry));
        EXPECT_EQ(namesIn(folder.path / zoneText), Names{name});
        EXPECT_EQ(localMoment(at("2026-11-15T20:03:04Z")), moment);
    }
    setZone("UTC0");
    const std::vector<const char*> times{"2026-11-16T00:00:00Z", "2026-11-15T23:59:59Z",
                                         "2026-11-16T10:00:00Z", "2026-01-02T00:00:00Z"};
    for (const char* time : times) EXPECT_TRUE(appendHistoryLine(history, at(time), line.entry));
    setContents(history / "2026-01-01.txt", sample);
    std::vector<std::string> read;
    for (const HistoryLine& each : all()) read.push_back(iso8601(each.at));
    EXPECT_EQ(read, (Texts{times[3], times[1], times[0], times[2]}));
}

TEST_F(HistoryTest, DaysAreCountedBackFromNowToTheSecond) {
    TimeStamp now = at("2026-11-14T12:00:00Z");
    Journal journal(folder.path / "journal.json", history, [&] { return now; });
    const JournalEntry entry = entryFor("a");
    for (const char* time : {"2026-11-14T12:00:00Z", "2026-11-15T11:59:59Z", "2026-11-15T12:00:00Z"}) {
        now = at(time);
        journal.upsert(entry);
    }
    now = at("2026-11-16T12:00:00Z");
    const struct {
        std::optional<int> days;
        std::size_t count;
    } rows[] = {{0, 0}, {1, 1}, {2, 3}, {INT32_MAX, 3}, {-1, 0}, {{}, 3}};
    for (const auto& row : rows) EXPECT_EQ(journal.history(row.days).size(), row.count);
}

TEST_F(HistoryTest, DamagedLinesAreSkippedAndTheOthersKept) {
    const std::string good = sample.substr(0, sample.size() - 1);
    for (std::size_t length = 0; length < good.size(); ++length) {
        fs::remove(day);  // a new file is written faster than a shortened one
        setContents(day, sample + good.substr(0, length) + "\n" + sample);
        ASSERT_EQ(all(), (Lines{line, line})) << length;
        ASSERT_EQ(lastOfAll(), (HistoryReading{{line}, length > 0 ? 1u : 0u, 0, {}})) << length;
    }
    const auto with = [&](std::string_view from, std::string_view to) {
        std::string text = good;
        return text.replace(text.find(from), from.size(), to) + "\n";
    };
    setContents(day, "\n\r\n" + with("restored\"}", "undone\"}") + with("\"event\"", "\"evens\"") +
                         with("\"entry\"", "\"entri\"") + with("\"at\"", "\"ad\"") + good + "x\n" + good +
                         good + "\n" + with("launchd", "\xFF") + with("Z\",\"entry", "\",\"entry") +
                         std::string(300, '{') + "\n" + std::string(5000, '\0') + "\n" +
                         with("{\"at\"", "{\"later\":[1,,2],\"at\"") + good + "\r\n" + good);
    EXPECT_EQ(all(), (Lines{line, line}));
    // Two damaged ones stand before a good one about the entry that they name, and are not looked at.
    EXPECT_EQ(lastOfAll(), (HistoryReading{{line, line}, 5, 3, {}}));
}

TEST_F(HistoryTest, OfLinesThatFollowEachOtherOnlyTheLastThatCanBeReadIsTaken) {
    HistoryLine other = line, later = line;
    other.entry.id = Uuid::random();
    other.entry.failure = R"("id":")" + line.entry.id.text();
    later.event = later.entry.status = EntryStatus::applied;
    const auto text = [](const HistoryLine& each) { return historyLineText(each.at, each.entry); };
    const auto with = [](std::string from, std::string_view piece, std::string_view to) {
        return from.replace(from.find(piece), piece.size(), to);
    };
    const std::string unknown = with(text(later), "\"applied\"}", "\"undone\"}");
    // It names the entry, but is another's: its own identifier comes second.
    const std::string nested =
        with(text(other), "{\"agent\"", "{\"a\":{\"id\":\"" + line.entry.id.text() + "\"},\"agent\"");
    const struct {
        std::string text;
        Lines last;
        std::size_t foreign;
    } rows[] = {
        {sample + text(later), {later}, 0},
        {sample + text(other) + text(later), {line, other, later}, 0},
        {sample + text(later) + unknown, {later}, 1},
        {nested + sample, {other, line}, 0},
        {with(sample, "{\"at\"", "{ \"at\"") + text(later), {line, later}, 0},
    };
    for (const auto& row : rows) {
        setContents(day, row.text);
        EXPECT_EQ(lastOfAll(), (HistoryReading{row.last, 0, row.foreign, {}})) << row.text;
    }
}

TEST_F(HistoryTest, ALineBehindAnUnfinishedOneStandsOnItsOwn) {
    setContents(day, sample + sample.substr(0, 40));
    EXPECT_TRUE(appendHistoryLine(history, line.at, line.entry));
    EXPECT_EQ(contentsOf(day), sample + sample.substr(0, 40) + "\n" + sample);
    EXPECT_EQ(all(), (Lines{line, line}));
}

TEST_F(HistoryTest, WhatIsInTheWayIsPassedOver) {
    EXPECT_EQ(all(), Lines());
    setContents(day, sample);
    fs::create_directory(history / "2026-11-14.jsonl");
    ASSERT_EQ(::mkfifo((history / "2026-11-15.jsonl").c_str(), 0600), 0);
    EXPECT_EQ(all(), Lines{line});
    EXPECT_EQ(lastOfAll().unread, (Texts{unreadable("2026-11-14.jsonl"), unreadable("2026-11-15.jsonl")}));
    for (const char* time : {"2026-11-14T12:00:00Z", "2026-11-15T12:00:00Z"})
        EXPECT_FALSE(appendHistoryLine(history, at(time), line.entry));
    EXPECT_FALSE(appendHistoryLine(day, line.at, line.entry));
    EXPECT_EQ(readHistory(day, std::nullopt), Lines());
    EXPECT_EQ(readLastOfHistory(day, neverStopped).unread,
              Texts{"The folder " + day.string() + " could not be read: Not a directory."});
}

}  // namespace brell
