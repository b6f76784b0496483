// Reading and replacing whole files.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <ctime>

#include "BrellCore/Support/DiskFlush.h"
#include "BrellCore/Support/DurableFile.h"
#include "BrellCore/Support/FileContents.h"
#include "BrellCore/Support/Leftovers.h"
#include "BrellCore/Support/Uuid.h"
#include "Tests/Support/SystemCalls.h"
#include "Tests/Support/Testing.h"

namespace brell {

namespace {

using namespace testing;

class FilesTest : public ::testing::Test {
protected:
    const TemporaryFolder folder;
    const fs::path file = folder.path / "notes.json";
};

std::optional<ReplaceFailure> failureOfReplacing(const fs::path& target) {
    return failureOf<ReplaceError>([&] { replaceFile(target, "new", Durability::powerCut); });
}

}  // namespace

TEST_F(FilesTest, EachFailingStepKeepsTheOldTargetAndRemovesTheTemporary) {
    if (!systemCallsAreWatched()) GTEST_SKIP();
    const struct {
        SystemCall call;
        int code;
        ReplaceStep step;
    } rows[] = {{SystemCall::open, EACCES, ReplaceStep::create},
                {SystemCall::write, ENOSPC, ReplaceStep::write},
                {SystemCall::fsync, EIO, ReplaceStep::synchronize},
                {SystemCall::close, EDQUOT, ReplaceStep::write},
                {SystemCall::rename, EROFS, ReplaceStep::rename}};
    setContents(file, "old");
    for (const auto& row : rows) {
        const FailingCall failing(folder.path, row.call, row.code);
        const auto failure = failureOfReplacing(file);

        ASSERT_TRUE(failure) << row.code;
        EXPECT_EQ(failure->step, row.step);
        EXPECT_EQ(failure->code, row.code);
        const bool named = row.step == ReplaceStep::rename;
        EXPECT_TRUE(named ? failure->path == file
                          : failure->path.filename().string().starts_with(".notes.json."));
        EXPECT_TRUE(describe(*failure).ends_with(": " + systemMessage(row.code) + "."));
        EXPECT_EQ(contentsOf(file), "old");
        EXPECT_EQ(namesIn(folder.path), Names{"notes.json"});
    }
}

TEST_F(FilesTest, InterruptedCallsAreRepeatedAndAFolderThatIsNotSynchronizedIsNoFailure) {
    if (!systemCallsAreWatched()) GTEST_SKIP();
    const struct {
        SystemCall call;
        int code, nth;
    } rows[] = {{SystemCall::open, EINTR, 1},
                {SystemCall::write, EINTR, 1},
                {SystemCall::fsync, EINTR, 1},
                {SystemCall::fsync, EIO, 2},
                {SystemCall::open, EACCES, 2}};
    for (const auto& row : rows) {
        const std::string contents = std::to_string(row.code) + " " + std::to_string(row.nth);
        const FailingCall failing(folder.path, row.call, row.code, row.nth);
        replaceFile(file, contents, Durability::powerCut);

        EXPECT_TRUE(failing.hasFailed());
        EXPECT_EQ(contentsOf(file), contents);
    }
}

// As on macOS, where one flush reaches the drive and the other its cache.
TEST(DiskFlushTest, OnlyAFlushThatIsNotSupportedGivesWayToTheNext) {
    const struct {
        std::vector<int> thorough, plain;  // what each gives to errno, call after call; 0 when it succeeds
        bool arrived;
    } rows[] = {{{0}, {}, true},
                {{EINTR, EINTR, 0}, {}, true},
                {{EIO}, {}, false},
                {{EINTR, EIO}, {}, false},
                {{ENOSPC}, {}, false},
                {{ENOTSUP}, {0}, true},
                {{ENOTTY}, {EINTR, 0}, true},
                {{EINVAL}, {EIO}, false},
                {{EOPNOTSUPP}, {EINVAL}, false}};
    for (const auto& row : rows) {
        std::size_t asked = 0;
        const auto answering = [&](const std::vector<int>& codes) {
            return [&codes, &asked, at = std::size_t{0}]() mutable {
                ++asked;
                errno = codes.at(at++);
                return errno == 0 ? 0 : -1;
            };
        };
        EXPECT_EQ(firstSupportedFlush({answering(row.thorough), answering(row.plain)}), row.arrived)
            << row.thorough[0];
        EXPECT_EQ(asked, row.thorough.size() + row.plain.size());
    }
}

TEST_F(FilesTest, ReplacingStopsAtAFolderOrFileInTheWay) {
    fs::create_directory(file);
    EXPECT_EQ(failureOfReplacing(file), (ReplaceFailure{ReplaceStep::rename, file, EISDIR}));
    EXPECT_EQ(namesIn(folder.path), Names{"notes.json"});
    EXPECT_TRUE(fs::is_directory(file));

    setContents(folder.path / "plain", "kept");
    const fs::path below = folder.path / "plain" / "deep";
    EXPECT_EQ(failureOfReplacing(below / "x"), (ReplaceFailure{ReplaceStep::createFolder, below, ENOTDIR}));
    EXPECT_EQ(failureOfReplacing(folder.path / "plain" / "x"),
              (ReplaceFailure{ReplaceStep::createFolder, folder.path / "plain", ENOTDIR}));
    EXPECT_EQ(contentsOf(folder.path / "plain"), "kept");
}

TEST_F(FilesTest, OnlyOldLeftoversOfReplacingAreRemoved) {
    const std::string id = Uuid::random().text();
    const auto make = [&](const std::string& name, std::time_t age) {
        if (name.starts_with(".notes.json.folder"))
            fs::create_directory(folder.path / name);
        else if (name.starts_with(".notes.json.link"))
            fs::create_symlink("nowhere", folder.path / name);
        else
            setContents(folder.path / name, "half");
        const timespec times[] = {{std::time(nullptr) - age, 0}, {std::time(nullptr) - age, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, (folder.path / name).c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
    };
    constexpr std::time_t day = 24 * 60 * 60;
    Names left;
    for (const std::string name :
         {"notes.json", "notes.json.*.tmp", ".notes.json.*.tm", ".notes.json.tmp", ".notes.jso.*.tmp",
          ".notes.json*.tmp", ".notes.jsonx.*.tmp", ".notes.json.x*.tmp", ".notes.json.folder.*.tmp",
          ".notes.json.link.*.tmp"})
        left.insert(name.find('*') == std::string::npos ? name
                                                        : std::string(name).replace(name.find('*'), 1, id));
    left.insert(".notes.json." + id.substr(1) + ".tmp");
    for (const std::string& name : left) make(name, 400 * day);
    const std::string young = temporaryFor(file).filename().string();
    make(young, day - 100);
    make(temporaryFor(file).filename().string(), day + 100);
    make(".notes.json.before-now." + id + ".tmp", day + 100);

    removeLeftovers({file});
    left.insert(young);
    EXPECT_EQ(namesIn(folder.path), left);
    removeLeftovers({folder.path / "missing" / "notes.json"});
}

TEST_F(FilesTest, EveryByteThatIsWrittenIsReadWithTheIdentityAndRoomBehindThem) {
    EXPECT_FALSE(readFile(file, 10));
    EXPECT_FALSE(identityOf(file));
    setContents(folder.path / "plain", "");
    EXPECT_FALSE(readFile(folder.path / "plain" / "below", 10));
    EXPECT_FALSE(identityOf(folder.path / "plain" / "below"));

    const fs::path deep = folder.path / "a" / "b" / "notes.json";
    for (const std::size_t size : {300'000u, 0u, 1u, 4096u}) {
        const std::string bytes(size, '\0');
        replaceFile(deep, bytes, Durability::readersOnly);
        EXPECT_EQ(namesIn(deep.parent_path()), Names{"notes.json"});
        const auto contents = readFile(deep, size, 64, std::string(5000, 'x'));
        ASSERT_TRUE(contents) << size;
        EXPECT_EQ(contents->bytes, bytes);
        EXPECT_EQ(contents->identity, identityOf(deep));
        EXPECT_GE(contents->bytes.capacity(), size + 64);
    }
    const auto before = identityOf(deep);
    replaceFile(deep, std::string(4096, 'x'), Durability::powerCut);
    EXPECT_NE(identityOf(deep), before);
}

TEST_F(FilesTest, ReadingRefusesAtOnceWhatIsNoOrdinaryFileOrTooLarge) {
    const fs::path pipe = folder.path / "pipe", loop = folder.path / "loop", lost = folder.path / "lost";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    fs::create_symlink(loop, loop);
    fs::create_symlink("nothing", lost);
    setContents(file, "12345");
    const struct {
        fs::path path;
        std::string reason;
        int code;
    } rows[] = {{pipe, "it is not an ordinary file", 0},
                {folder.path, "it is not an ordinary file", 0},
                {"/dev/zero", "it is not an ordinary file", 0},
                {file, "it holds more than 4 bytes", 0},
                {lost, "it is a link to a file that is not there", 0},
                {loop, systemMessage(ELOOP), ELOOP}};
    for (const auto& row : rows)
        EXPECT_EQ(failureOf<ReadError>([&] { readFile(row.path, 4); }),
                  (ReadFailure{row.path, row.reason, row.code}));
    for (const fs::path& link : {lost, loop}) EXPECT_TRUE(thrownBy<ReadError>([&] { identityOf(link); }));
}

TEST_F(FilesTest, AFailingReadIsReportedAndAnInterruptedOneRepeated) {
    if (!systemCallsAreWatched()) GTEST_SKIP();
    setContents(file, "whole");
    {
        const FailingCall interrupted(folder.path, SystemCall::read, EINTR);
        EXPECT_EQ(readFile(file, 10)->bytes, "whole");
    }
    const FailingCall broken(folder.path, SystemCall::read, EIO, 2);  // the one that would find the end
    EXPECT_EQ(messageOf([&] { readFile(file, 10); }),
              "The file " + file.string() + " could not be read: " + systemMessage(EIO) + ".");
}

}  // namespace brell
