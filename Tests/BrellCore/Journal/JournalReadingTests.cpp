// A journal file that is read, and one that is refused.
#include <gtest/gtest.h>
#include <unistd.h>

#include "BrellCore/Journal/Journal.h"
#include "BrellCore/Support/Ownership.h"
#include "Tests/Support/Entries.h"
#include "Tests/Support/SystemCalls.h"
#include "Tests/Support/Testing.h"

namespace brell {

namespace {

using namespace testing;

class JournalReadingTest : public ::testing::Test {
protected:
    const TemporaryFolder folder;
    const fs::path file = folder.path / "journal.json";
    const std::string sample = testing::sample("Journal/format-1.json");

    std::unique_ptr<Journal> opened(std::string_view text) const {
        fs::remove(file);  // a new file is written faster than a shortened one
        setContents(file, text);
        return Journal::open(folder.path);
    }
    // The text behind cannotRead when this is refused; empty when it opens. Nothing is touched either way.
    std::string refusalOf(const std::string& text) const {
        const auto error = thrownBy<JournalError>([&] { opened(text); });
        EXPECT_EQ(contentsOf(file), text);
        EXPECT_EQ(namesIn(folder.path), Names{"journal.json"});
        if (!error) return {};
        EXPECT_EQ(error->failure().kind, JournalFailure::Kind::cannotRead);
        EXPECT_EQ(error->what(), "The change journal could not be read: " + error->failure().text + ".");
        EXPECT_TRUE(!error->failure().text.ends_with('.') || error->failure().text.ends_with("xxx..."));
        return error->failure().text;
    }
    std::string sampleWith(std::string_view from, std::string_view to) const {
        std::string text = sample;
        const std::size_t place = text.find(from);
        EXPECT_NE(place, std::string::npos) << from;
        return text.replace(place, from.size(), to);
    }
};

}  // namespace

TEST_F(JournalReadingTest, TheSampleFileIsReadAndWrittenToTheByte) {
    EXPECT_EQ(opened(sample)->all(), sampleEntries());

    const auto fresh = Journal::open(folder.path / "fresh");
    for (const JournalEntry& entry : sampleEntries()) fresh->upsert(entry);
    EXPECT_EQ(contentsOf(fresh->fileURL()), sample);

    const auto known = opened(sample);
    for (const JournalEntry& entry : {sampleEntries()[1], sampleEntries()[0], sampleEntries()[1]}) {
        known->upsert(entry);
        EXPECT_EQ(contentsOf(file), sample);
    }
}

TEST_F(JournalReadingTest, KeyOrderUnknownKeysAndOldFormatsDoNotMatter) {
    EXPECT_EQ(opened(R"({"format":0,"later":{"x":[1]},"entries":[]})")->all(), Entries());
    EXPECT_EQ(opened(sampleWith("\"choiceID\"", "\"future\" : {\"a\" : []}, \"choiceID\""))->all(),
              sampleEntries());
    EXPECT_EQ(opened(sampleWith("01234567-89AB-CDEF", "01234567-89ab-cdef"))->all(), sampleEntries());

    Entries bare{sampleEntries()[0]};
    bare[0].writes = {};
    bare[0].choiceID = std::nullopt;
    for (const char* name : {"Journal/bare.json", "Journal/nulls.json"})
        EXPECT_EQ(opened(testing::sample(name))->all(), bare) << name;
}

TEST_F(JournalReadingTest, AFileCutAnywhereIsRefusedOrComplete) {
    const auto running = opened(sample);
    for (std::size_t length = 0; length + 1 < sample.size(); ++length) {
        const std::string cut = sample.substr(0, length);
        EXPECT_NE(refusalOf(cut), "") << length;
        EXPECT_TRUE(thrownBy<JournalError>([&] { running->active(); })) << length;
    }
    EXPECT_EQ(opened(sample.substr(0, sample.size() - 1))->all(), sampleEntries());
    EXPECT_EQ(running->all(), sampleEntries());
}

TEST_F(JournalReadingTest, ANewerFormatIsNamedWhateverItsShape) {
    const auto newer = [](const char* format) {
        return "the journal was written by a newer Brell (format " + std::string(format) +
               "); update Brell before changing anything";
    };
    EXPECT_EQ(refusalOf(sampleWith("\"format\" : 1", "\"format\" : 2")), newer("2"));
    EXPECT_EQ(refusalOf(R"({"entries":{"a":1},"format":9223372036854775807})"), newer("9223372036854775807"));
    EXPECT_EQ(refusalOf(R"({"format":3})"), newer("3"));
    EXPECT_EQ(
        refusalOf(R"({"format":3,"x":)" + std::string(5000, '[') + "1e999" + std::string(5000, ']') + "}"),
        newer("3"));
    EXPECT_EQ(refusalOf(R"({"changes":[true],"format":4,"entries":[{"id":1}]})"), newer("4"));
}

TEST_F(JournalReadingTest, EveryRequiredKeyIsRequired) {
    for (const std::string key :
         {"appliedAt", "direction", "id", "kind", "macOSVersion", "status", "tweakID", "writes", "domain",
          "key", "original", "written", "label", "override", "plistPath", "wasLoaded", "entries", "format"}) {
        const std::string quoted = '"' + key + '"';
        EXPECT_TRUE(refusalOf(sampleWith(quoted, "\"x\"")).ends_with("the key " + quoted + " is missing"));
    }
}

TEST_F(JournalReadingTest, ALinkIsFollowedAndNeverReplacedOrTakenForNothing) {
    const fs::path real = folder.path / "elsewhere" / "journal.json";
    setContents(real, sample);
    fs::create_symlink(real, file);
    const auto journal = Journal::open(folder.path);
    journal->upsert(sampleEntries()[1]);
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(contentsOf(real), sample);

    // Moved elsewhere, and a link left in its place, while it is open.
    const Journal::Exclusive held = journal->exclusive();
    const fs::path moved = folder.path / "moved" / "changes.json";
    fs::create_directory(moved.parent_path());
    fs::rename(real, moved);
    fs::remove(file);
    fs::create_symlink(moved, file);
    const JournalEntry more = entryFor("more");
    journal->upsert(more, held);
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(Journal::open(folder.path)->all().back(), more);
    EXPECT_EQ(namesIn(moved.parent_path()), (Names{".journal.lock", "changes.json"}));
    fs::rename(moved, real);
    fs::remove(file);
    fs::create_symlink(real, file);

    fs::remove(real);
    EXPECT_EQ(messageOf([&] { Journal::open(folder.path); }),
              "The change journal could not be read: " + file.string() +
                  ": it is a link to a file that is not there.");

    if (!systemCallsAreWatched()) return;
    fs::remove(file);
    const FailingCall failing(folder.path, SystemCall::lstat, EIO,
                              2);  // the first is asked in search of a link
    EXPECT_EQ(messageOf([&] { Journal::open(folder.path); }),
              "The change journal could not be read: " + file.string() + ": Input/output error.");
}

TEST_F(JournalReadingTest, WhatOthersCouldHaveWrittenIsRefused) {
    const fs::path real = folder.path / "real" / "journal.json";
    setContents(real, sample);
    fs::create_symlink(real, file);
    const auto journal = Journal::open(folder.path);
    const auto isRefused = [&](const fs::path& path, const std::string& why) {
        const std::string reason =
            path.string() + why + ", so that others could choose what an undo puts back";
        EXPECT_EQ(failureOf<JournalError>([&] { Journal::open(folder.path); }),
                  (JournalFailure{JournalFailure::Kind::cannotRead, reason}));
        EXPECT_EQ(failureOf<JournalError>([&] { journal->exclusive(); }),
                  (JournalFailure{JournalFailure::Kind::cannotWrite, reason}));
        EXPECT_EQ(namesIn(real.parent_path()), Names{"journal.json"});
    };
    for (const fs::path& path : {folder.path, real, real.parent_path()}) {
        const fs::perms before = fs::status(path).permissions();
        for (const fs::perms perms :
             {before | fs::perms::others_write, before | fs::perms::others_write | fs::perms::sticky_bit}) {
            fs::permissions(path, perms);
            isRefused(path, " can be written by every user of this Mac");
        }
        fs::permissions(path, before);
        if (::geteuid() != 0) continue;  // else nothing can be given away
        fs::permissions(path, before | fs::perms::group_write);
        ASSERT_EQ(::chown(path.c_str(), 501, 20), 0);
        isRefused(path, " belongs to another user");
        ASSERT_EQ(::chown(path.c_str(), 0, 20), 0);
        isRefused(path, " can be written by a group of users");
        EXPECT_EQ(whyNotOnlyOurs(path, 20), std::nullopt) << "which has that user's number";
        ASSERT_EQ(::chown(path.c_str(), 0, 0), 0);
    }
    journal->upsert(sampleEntries()[1]);  // its own group may write it
    EXPECT_EQ(contentsOf(real), sample);
}

// Each row of the table is a text of the sample, the one that takes its place, and how the reason ends.
TEST_F(JournalReadingTest, DamageIsRefusedWithItsReason) {
    std::vector<Texts> rows = sampleRows("Journal/refused.txt");
    rows.insert(rows.end(), {{"été", "\xE9t\xE9"},
                             {"dock.sample", "dock\nsample"},
                             {"\"format\" : 1\n}", "\"format\" : 1\n}}"},
                             {"\"format\" : 1\n}", "\"format\" : 1\n} {}", "something follows after its end"},
                             {sample, "[]"},
                             {sample, std::string(4096, '\0')},
                             {sample, std::string(100'000, '[')},
                             {sample, "{\"entries\" : [" + std::string(100'000, '{')}});
    for (const Texts& row : rows) {
        const std::string reason = refusalOf(sampleWith(row[0], row[1]));
        EXPECT_TRUE(reason.starts_with(file.string() + ": ")) << row[0] << " -> " << row[1];
        EXPECT_TRUE(row.size() < 3 || reason.ends_with(row[2])) << reason;
    }
}

TEST_F(JournalReadingTest, DamageInWhatIsPassedOverIsRefusedToo) {
    const std::string places[] = {"\"entries\"", "\"choiceID\"", "\"domain\"",
                                  "\"label\"",   "\"type\"",     "\"absent\""};
    for (const std::string& place : places) {
        const auto withLater = [&](std::string_view later) {
            return sampleWith(place, "\"later\" : " + std::string(later) + ", " + place);
        };
        for (const char* later :
             {"{\"a\" : }", "[1,,2]", "[1 2]", "[}", "nul", "trux", "01", "1e", "-", "1.", "1-2", "[1\v]",
              "{\"\\x\" : 1}", "{1 : 1}", "\"\\ud800\"", "\"\\q\"", "{\"a\" : 1,}"})
            EXPECT_NE(refusalOf(withLater(later)), "") << place << " after " << later;
        for (const std::string& later :
             {std::string(R"([null, {"": [-1.5e3, true, 18446744073709551616, -0E+9999]}, "\u00e9"])"),
              std::string(100'000, '[') + std::string(100'000, ']')})
            EXPECT_EQ(opened(withLater(later))->all(), sampleEntries()) << place;
    }
    EXPECT_EQ(opened(sampleWith("\"absent\" : true", "\"absent\" : true, \"value\" : [\"a\"]"))->all(),
              sampleEntries());
}

TEST_F(JournalReadingTest, AReasonStaysShortAndOnItsLine) {
    for (const std::string value :
         {"applied", "bool", "on", "2026-11-15T20:23:13Z", "01234567-89AB-CDEF-0123-456789ABCDEF"}) {
        const std::string reason =
            refusalOf(sampleWith('"' + value + '"', '"' + std::string(100'000, 'x') + '"'));
        EXPECT_LT(reason.size(), file.string().size() + 300) << value;
        EXPECT_NE(reason.find("xxx..."), std::string::npos) << value;
    }
}

TEST_F(JournalReadingTest, WhatCannotBeReadIsNotTakenForAMissingFile) {
    fs::create_directory(file);
    EXPECT_EQ(messageOf([&] { Journal::open(folder.path); }),
              "The change journal could not be read: " + file.string() + ": it is not an ordinary file.");
    fs::remove(file);
    if (!systemCallsAreWatched()) return;
    setContents(file, sample);
    for (const SystemCall call : {SystemCall::stat, SystemCall::open, SystemCall::read}) {
        const FailingCall failing(file, call, EIO);
        EXPECT_TRUE(thrownBy<JournalError>([&] { Journal::open(folder.path); }));
    }
}

}  // namespace brell
