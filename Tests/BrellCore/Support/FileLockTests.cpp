#include "BrellCore/Support/FileLock.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <thread>

#include "Tests/Support/SystemCalls.h"
#include "Tests/Support/Testing.h"

namespace brell {

namespace {

using namespace std::chrono_literals;
using namespace testing;

class FileLockTest : public ::testing::Test {
protected:
    const TemporaryFolder folder;
    const fs::path file = folder.path / "made" / "for it" / ".lock";

    std::optional<FileLock> acquired(std::chrono::milliseconds patience = 0ms) const {
        return FileLock::acquire(file, patience);
    }
    // Asks another process, which tries once.
    bool isFreeElsewhere() const {
        const pid_t child = ::fork();
        if (child == 0) ::_exit(acquired() ? 0 : 1);
        int status = -1;
        return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
};

class FileLockConcurrencyTest : public FileLockTest {};

}  // namespace

TEST_F(FileLockTest, ExcludesEveryOtherHolderUntilItGoes) {
    EXPECT_TRUE(isFreeElsewhere());
    {
        auto held = acquired();
        ASSERT_TRUE(held);
        const FileLock moved = std::move(*held);
        EXPECT_FALSE(acquired());
        EXPECT_FALSE(isFreeElsewhere());

        const auto start = std::chrono::steady_clock::now();
        EXPECT_FALSE(acquired(30ms));
        EXPECT_GE(std::chrono::steady_clock::now() - start, 30ms);
    }
    EXPECT_TRUE(isFreeElsewhere());
    EXPECT_TRUE(acquired());
}

TEST_F(FileLockTest, AFileThatIsRemovedBeforeItIsLockedExcludesNobody) {
    if (!systemCallsAreWatched()) GTEST_SKIP();
    const EachCall meanwhile(file, before(SystemCall::flock, [&] { fs::remove(file); }));
    EXPECT_FALSE(acquired());
    const auto held = acquired();
    EXPECT_TRUE(held);
    EXPECT_FALSE(acquired());
}

TEST_F(FileLockTest, AFileThatCannotBeMadeIsAnErrorNamingIt) {
    setContents(folder.path / "made", "a file where a folder should be");
    EXPECT_NE(messageOf([&] { acquired(); }).find(folder.path.string()), std::string::npos);

    fs::remove(folder.path / "made");
    fs::create_directories(file.parent_path());
    fs::create_symlink(folder.path / "elsewhere", file);
    EXPECT_NE(messageOf([&] { acquired(); }).find(file.string()), std::string::npos);
    EXPECT_FALSE(fs::exists(folder.path / "elsewhere"));
}

TEST_F(FileLockTest, ASystemThatCannotSayWhoseFileItIsIsNoOtherHolderToWaitFor) {
    if (!systemCallsAreWatched()) GTEST_SKIP() << "system calls can't be made to fail here";
    const auto held = acquired();
    for (const SystemCall call : {SystemCall::stat, SystemCall::fstat}) {
        const FailingCall failing(folder.path, call, EIO);
        EXPECT_NE(messageOf([&] { held->stillExcludes(); }).find(file.string()), std::string::npos);
    }
    const FailingCall interrupted(folder.path, SystemCall::open, EINTR);
    EXPECT_FALSE(acquired());  // asked again, and found held
}

TEST_F(FileLockConcurrencyTest, OneThreadAtATimeAlsoWhileTheFileIsBeingRemoved) {
    std::atomic<int> counter = 0;  // each step of its own; only the lock makes them one
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&, i] {
            for (int round = 0; round < 25; ++round) {
                const auto held = acquired(60s);
                ASSERT_TRUE(held);
                const int seen = counter;
                std::this_thread::yield();
                counter = seen + 1;
                if (i == 0 && round % 5 == 0) fs::remove(file);  // its holder may: the last thing it does
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(counter, 100);
}

}  // namespace brell
