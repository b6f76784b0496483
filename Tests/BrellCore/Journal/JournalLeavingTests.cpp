// The end of a journal, while others may still want it.
#include <gtest/gtest.h>

#include <latch>
#include <thread>

#include "BrellCore/Journal/Journal.h"
#include "BrellCore/Journal/JournalLeaving.h"
#include "BrellCore/Support/Leftovers.h"
#include "Tests/Support/Entries.h"
#include "Tests/Support/SystemCalls.h"
#include "Tests/Support/Testing.h"

namespace brell {

namespace {

using namespace testing;

class JournalLeavingTest : public ::testing::Test {
protected:
    JournalLeavingTest() { journal->upsert(entryFor("ended", EntryStatus::restored)); }

    std::string refusal() {
        return messageOf([&] { leaveJournal(*journal, toTrash); });
    }

    const TemporaryFolder folder;
    const fs::path directory = folder.path / "brell", trash = folder.path / "trash";
    const std::unique_ptr<Journal> journal = Journal::open(directory);
    const TakeAway toTrash = [this](const fs::path& taken) { fs::rename(taken, trash); };
};

}  // namespace

TEST_F(JournalLeavingTest, TheFolderGoesWholeWhenAllOfItIsBrells) {
    for (const fs::path& own :
         {directory / ".DS_Store", directory / ".relaunches.lock", directory / "journal.json.damaged-2026",
          directory / "restore.sh", temporaryFor(directory / "journal.json")})
        setContents(own, "");
    const auto before = everythingIn(directory);
    EXPECT_TRUE(leaveJournal(*journal, toTrash));
    EXPECT_EQ(everythingIn(trash), before);
    EXPECT_FALSE(leaveJournal(*journal, toTrash));
    EXPECT_EQ(namesIn(folder.path), Names{"trash"}) << "nothing is made anew";
}

TEST_F(JournalLeavingTest, NothingIsTakenAwayThatIsStillOfUseOrNotBrells) {
    const auto expectRefused = [&](const std::string& reason) {
        fs::remove(directory / ".journal.lock");
        const auto before = everythingIn(folder.path);
        EXPECT_EQ(refusal(), "The change journal could not be removed: " + reason + ". Nothing was lost.");
        EXPECT_EQ(everythingIn(folder.path), before);
    };
    for (const EntryStatus status : {EntryStatus::capturing, EntryStatus::applied}) {
        JournalEntry active = entryFor("active", status);
        journal->upsert(active);
        expectRefused("1 change is still active");
        active.status = EntryStatus::restored;
        journal->upsert(active);
    }
    for (const char* script : {"restore.sh", "restore.sh.before-2026-01-02-030405"}) {
        setContents(directory / script, "# lost (applied 2026-01-02T03:04:05Z)\n");
        expectRefused((directory / script).string() +
                      " undoes changes that the journal does not know; run it or move it elsewhere first");
        fs::remove(directory / script);
        fs::create_directory(directory / script);
        expectRefused((directory / script).string() +
                      " may undo changes that the journal does not know, and can't be read (it is not an "
                      "ordinary file); move it elsewhere first");
        fs::remove(directory / script);
    }
    for (const char* other : {"Preferences", ".notes.tmp"}) {
        fs::create_directory(directory / other);
        expectRefused((directory / other).string() + " is not Brell's, and lies in Brell's folder");
        fs::remove(directory / other);
    }
    for (const fs::path& moved : {directory / "journal.json", directory}) {
        fs::rename(moved, folder.path / "elsewhere");
        fs::create_symlink(folder.path / "elsewhere", moved);
        expectRefused(moved.string() + " is a link, so that the journal lies elsewhere");
        fs::remove(moved);
        fs::rename(folder.path / "elsewhere", moved);
    }
    const auto before = everythingIn(directory);
    EXPECT_EQ(
        messageOf(
            [&] { leaveJournal(*journal, [](const fs::path&) { throw std::runtime_error("it is full"); }); }),
        "The change journal could not be removed: " + directory.string() + ": it is full. Nothing was lost.");
    EXPECT_TRUE(fs::exists(directory / "journal.json"));

    setContents(directory / "journal.json", "damaged");
    EXPECT_TRUE(refusal().starts_with("The change journal could not be read: "));
    EXPECT_FALSE(fs::exists(trash));
}

TEST_F(JournalLeavingTest, AChangeOfAnotherBrellIsNeverLost) {
    if (!systemCallsAreWatched()) GTEST_SKIP();
    const auto other = Journal::open(directory);
    JournalEntry entry = entryFor("theirs", EntryStatus::applied);
    {
        // It is made after the first look, and before the lock is had.
        const EachCall meanwhile(directory / ".journal.lock",
                                 before(SystemCall::flock, [&] { other->upsert(entry); }));
        EXPECT_EQ(refusal(),
                  "The change journal could not be removed: 1 change is still active. Nothing was lost.");
    }
    entry.status = EntryStatus::restored;
    other->upsert(entry);

    // It waits for the lock of the folder that goes.
    const JournalEntry late = entryFor("late", EntryStatus::applied);
    std::thread waiting;
    leaveJournal(*journal, [&](const fs::path& taken) {
        std::latch waits(1);
        const EachCall asking(directory / ".journal.lock",
                              before(SystemCall::flock, [&] { waits.count_down(); }));
        waiting = std::thread([&] { other->upsert(late); });
        waits.wait();
        toTrash(taken);
    });
    waiting.join();
    EXPECT_EQ(Journal::open(directory)->active(), std::vector<JournalEntry>{late});
    EXPECT_EQ(Journal::open(trash)->active(), std::vector<JournalEntry>());
}

}  // namespace brell
