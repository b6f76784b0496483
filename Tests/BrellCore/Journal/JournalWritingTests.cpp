// Saving entries: on disk or not at all, and side by side with others.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>

#include "BrellCore/Journal/Journal.h"
#include "BrellCore/Support/Failure.h"
#include "Tests/Support/Entries.h"
#include "Tests/Support/SystemCalls.h"
#include "Tests/Support/Testing.h"

namespace brell {

namespace {

using namespace testing;

class JournalWritingTest : public ::testing::Test {
protected:
    const TemporaryFolder folder;
    const fs::path directory = folder.path / "Application Support" / "Brell";
    const fs::path file = directory / "journal.json";

    std::unique_ptr<Journal> opened() const { return Journal::open(directory); }
};

// The text behind cannotWrite when the entry is refused; empty when it is saved.
std::string refusalOf(Journal& journal, const JournalEntry& entry) {
    const auto error = thrownBy<JournalError>([&] { journal.upsert(entry); });
    if (!error) return {};
    EXPECT_EQ(error->failure().kind, JournalFailure::Kind::cannotWrite);
    EXPECT_EQ(error->what(),
              "The change journal could not be written: " + error->failure().text + ". Nothing was changed.");
    return error->failure().text;
}

}  // namespace

TEST_F(JournalWritingTest, NothingIsMadeBeforeTheFirstEntry) {
    const auto journal = opened();
    EXPECT_EQ(journal->all(), Entries());
    EXPECT_EQ(journal->history(), std::vector<HistoryLine>());
    EXPECT_FALSE(fs::exists(directory));

    const JournalEntry entry = entryFor("a");
    const mode_t before = ::umask(0);
    journal->upsert(entry);
    ::umask(before);
    for (const fs::path& made : {directory.parent_path(), directory, directory / "history"})
        EXPECT_EQ(fs::status(made).permissions(), fs::perms::owner_all) << made;
    EXPECT_EQ(namesIn(directory), (Names{".journal.lock", "history", "journal.json"}));
    EXPECT_EQ(opened()->all(), Entries{entry});
    EXPECT_EQ(opened()->history().size(), 1u);
}

TEST_F(JournalWritingTest, AFailedSaveChangesNeitherListNorFile) {
    if (!systemCallsAreWatched()) GTEST_SKIP();
    const auto journal = opened();
    const JournalEntry kept = entryFor("a");
    journal->upsert(kept);
    const std::string before = contentsOf(file);
    const struct {
        SystemCall call;
        int code, nth;
        std::string begin, end;
    } rows[] = {
        {SystemCall::open, EACCES, 1, "", (directory / ".journal.lock").string()},
        {SystemCall::open, EROFS, 2, "cannot create " + (directory / ".journal.json.").string(), ".tmp"},
        {SystemCall::write, ENOSPC, 1, (directory / ".journal.json.").string(), systemMessage(ENOSPC)},
        {SystemCall::rename, EXDEV, 1, "rename failed: ", systemMessage(EXDEV)},
    };
    JournalEntry changed = kept;
    changed.status = EntryStatus::applied;
    for (const auto& row : rows)
        for (const JournalEntry& entry : {changed, entryFor("b")}) {
            const FailingCall failing(directory, row.call, row.code, row.nth);
            const std::string text = refusalOf(*journal, entry);

            EXPECT_TRUE(text.starts_with(row.begin) && text.find(row.end) != std::string::npos) << text;
            EXPECT_EQ(contentsOf(file), before);
            EXPECT_EQ(journal->all(), Entries{kept});
            EXPECT_EQ(namesIn(directory), (Names{".journal.lock", "history", "journal.json"}));
        }
    EXPECT_EQ(journal->history().size(), 1u);
    journal->upsert(changed);
    EXPECT_EQ(opened()->all(), Entries{changed});
}

TEST_F(JournalWritingTest, OnceTheFileIsInPlaceTheEntryIsSaved) {
    const auto journal = opened();
    journal->upsert(entryFor("a"));
    fs::remove_all(directory / "history");
    setContents(directory / "history", "a file where the folder should be");
    journal->upsert(entryFor("b"));
    EXPECT_EQ(opened()->all().size(), 2u);
    EXPECT_EQ(journal->history(), std::vector<HistoryLine>());

    if (!systemCallsAreWatched()) return;
    const FailingCall failing(file, SystemCall::stat, EIO, 4);  // the look at the new file
    journal->upsert(entryFor("c"));
    EXPECT_TRUE(failing.hasFailed());
    EXPECT_EQ(journal->all().size(), 3u);
}

TEST_F(JournalWritingTest, WhatCouldNotBeReadBackIsRefusedBeforeAnythingIsWritten) {
    const auto journal = opened();
    journal->upsert(entryFor("a"));
    const std::string before = contentsOf(file);
    const struct {
        void (*spoil)(JournalEntry&);
        std::string reason;
    } rows[] = {
        {[](auto& e) { e.writes[0].original = PrefValue(NAN); }, "the number nan can't be saved"},
        {[](auto& e) { e.writes[1].key.name = "\xED\xA0\x80"; }, "text that is not UTF-8 can't be saved"},
        {[](auto& e) { e.failure = "\x80"; }, "text that is not UTF-8 can't be saved"},
        {[](auto& e) { e.appliedAt = at("9999-12-31T23:59:59Z") + std::chrono::seconds(1); },
         "a date outside the years 0 to 9999 can't be saved"},
        {[](auto& e) { e.restoredAt = at("0000-01-01T00:00:00Z") - std::chrono::seconds(1); },
         "a date outside the years 0 to 9999 can't be saved"},
    };
    for (const auto& row : rows) {
        JournalEntry entry = entryFor("b");
        row.spoil(entry);
        EXPECT_EQ(refusalOf(*journal, entry), row.reason);
        EXPECT_EQ(contentsOf(file), before);
        EXPECT_EQ(journal->history().size(), 1u);
    }
}

TEST_F(JournalWritingTest, OtherEntriesKeepTheirTextToTheByte) {
    const std::string foreign =
        R"({"writes":[], "tweakID":"x", "status":"failed","macOSVersion":"\u0031", "later" : {"a":[1e2]},)"
        "\r\n\t\"kind\":\"preference\",\"id\":\"01234567-89ab-cdef-0123-456789abcdef\","
        R"("direction":"on","appliedAt":"2026-11-15T20:23:13Z"  })";
    setContents(file, "{\"format\":0,\"entries\":[ " + foreign + " \n ]}");
    const JournalEntry entry = entryFor("b");
    std::string after;
    for (int i = 0; i < 3; ++i) {
        opened()->upsert(entry);
        if (i == 0) after = contentsOf(file);
        EXPECT_EQ(contentsOf(file), after);
    }
    EXPECT_TRUE(after.starts_with("{\n  \"entries\" : [\n    " + foreign + ",\n    {\n      \"appliedAt\""));
    EXPECT_TRUE(after.ends_with("\n    }\n  ],\n  \"format\" : 1\n}\n"));
    EXPECT_EQ(opened()->all().front().macOSVersion, "1");

    std::string another = foreign;
    another.replace(another.find("01234567"), 8, "11111111");
    setContents(file, after.insert(after.find("\n  ],"), "," + another));
    JournalEntry changed = entry;
    changed.status = EntryStatus::applied;
    opened()->upsert(changed);
    EXPECT_TRUE(contentsOf(file).starts_with("{\n  \"entries\" : [\n    " + foreign + ",\n    {\n      \""));
    EXPECT_TRUE(contentsOf(file).ends_with("\n    },\n    " + another + "\n  ],\n  \"format\" : 1\n}\n"));
    EXPECT_EQ(opened()->all().at(1), changed);
}

TEST_F(JournalWritingTest, FollowsTheFileOfOthersAndOutlivesItsLoss) {
    const auto mine = opened(), theirs = opened();
    const JournalEntry a = entryFor("a"), b = entryFor("b"), c = entryFor("c");
    mine->upsert(a);
    theirs->upsert(b);
    EXPECT_EQ(mine->all(), (Entries{a, b}));
    mine->upsert(c);
    EXPECT_EQ(theirs->all(), (Entries{a, b, c}));

    fs::remove(file);
    EXPECT_EQ(mine->all(), (Entries{a, b, c}));
    mine->upsert(a);
    EXPECT_EQ(theirs->all(), (Entries{a, b, c}));

    setContents(file, "damaged");
    EXPECT_TRUE(thrownBy<JournalError>([&] { mine->upsert(b); }));
    EXPECT_TRUE(thrownBy<JournalError>([&] { mine->activeEntry("a"); }));
    EXPECT_EQ(contentsOf(file), "damaged");
    setContents(file, sample("Journal/format-1.json"));
    EXPECT_EQ(opened()->all(), sampleEntries());
    EXPECT_EQ(mine->active().size(), 4u) << "with those that were active";
}

TEST_F(JournalWritingTest, ADryRunAndARealRunNeverShareAFolderEvenWhenBothHaveItOpen) {
    const JournalEntry entry = entryFor("a");
    for (const JournalUse first : {JournalUse::changes, JournalUse::dryRun}) {
        const bool isDry = first == JournalUse::dryRun;
        const fs::path shared = folder.path / (isDry ? "dry" : "real");
        const auto mine = Journal::open(shared, systemNow, first);
        const auto theirs =
            Journal::open(shared, systemNow, isDry ? JournalUse::changes : JournalUse::dryRun);
        EXPECT_EQ(namesIn(shared), Names()) << "reading alone marks nothing";
        mine->upsert(entry);
        EXPECT_EQ(Journal::isMarkedForDryRun(shared), isDry);
        const auto before = everythingIn(shared);
        const std::string why =
            shared / (isDry ? "dry-run.txt says that it is a dry run's, whose changes were never made."
                            : "journal.json: it holds changes that were made, which a dry run leaves alone.");
        EXPECT_EQ(messageOf([&] { theirs->all(); }), "The change journal could not be read: " + why);
        EXPECT_TRUE(thrownBy<JournalError>([&] { theirs->upsert(entry); }));
        EXPECT_EQ(everythingIn(shared), before);

        fs::remove(shared / "journal.json");  // the marker alone is enough
        EXPECT_EQ(thrownBy<JournalError>([&] { theirs->upsert(entry); }).has_value(), isDry);
    }
    EXPECT_TRUE(thrownBy<JournalError>([&] { Journal::open(folder.path / "dry"); }));
}

TEST_F(JournalWritingTest, AJournalThatIsRemovedUnderAChangeIsMadeAnew) {
    const auto mine = opened();
    JournalEntry entry = entryFor("a");
    mine->upsert(entryFor("before"));
    for (const fs::path& lost : {directory / ".journal.lock", directory}) {
        const Journal::Exclusive held = mine->exclusive();
        entry.id = Uuid::random();
        mine->upsert(entry, held);
        fs::remove_all(lost);
        entry.status = EntryStatus::failed;
        mine->upsert(entry, held);
        EXPECT_EQ(opened()->all(), mine->all());
        EXPECT_EQ(mine->entry(entry.id), entry);
        EXPECT_FALSE(FileLock::acquire(directory / ".journal.lock", std::chrono::milliseconds(0)));

        // A new entry beside one that others made meanwhile is refused; the outcome of an older one is not.
        const JournalEntry theirs = entryFor("b"), late = entryFor("b");
        fs::remove_all(lost);
        opened()->upsert(theirs);
        EXPECT_EQ(
            failureOf<JournalError>([&] { mine->upsert(late, held); }),
            (JournalFailure{JournalFailure::Kind::cannotWrite, "another Brell has changed b meanwhile"}));
        EXPECT_EQ(mine->entry(late.id), std::nullopt);
        JournalEntry ended = theirs;
        ended.status = EntryStatus::restored;
        mine->upsert(ended, held);
    }
    if (!systemCallsAreWatched()) return;
    const EachCall inTheMiddle(directory, before(SystemCall::rename, [&] { fs::remove_all(directory); }));
    mine->upsert(entry);
    EXPECT_EQ(opened()->entry(entry.id), entry);
}

TEST_F(JournalWritingTest, WhatOthersBeginAnewGetsTheActiveEntriesThatItDoesNotKnow) {
    const auto mine = opened();
    JournalEntry ended = entryFor("ended"), known = entryFor("known");
    const JournalEntry kept = entryFor("kept");
    JournalEntry theirs = entryFor("kept");
    theirs.writes[0].original = kept.writes[0].written;  // they knew nothing of the other
    theirs.writes[0].written = kept.writes[0].original;
    ended.status = EntryStatus::restored;
    for (const JournalEntry& entry : {ended, known, kept}) mine->upsert(entry);
    fs::remove(file);
    known.status = EntryStatus::restored;
    for (const JournalEntry& entry : {theirs, known}) opened()->upsert(entry);
    EXPECT_EQ(mine->all(), (Entries{kept, theirs, known}));
    EXPECT_EQ(mine->active(), (Entries{kept, theirs}));
    EXPECT_EQ(opened()->all(), (Entries{theirs, known})) << "reading writes nothing";
    const JournalEntry next = entryFor("next");
    mine->upsert(next);
    theirs.writes[0].original = kept.writes[0].original;
    EXPECT_EQ(opened()->active(), (Entries{theirs, next})) << "it puts back what was before both";
    EXPECT_EQ(opened()->entry(kept.id)->status, EntryStatus::restored);
}

}  // namespace brell
