// The cost of an operation in system calls: a change is durable with the fewest flushes there can be.

#include <gtest/gtest.h>

#include "Tests/Support/EngineFixture.h"
#include "Tests/Support/SystemCalls.h"

using namespace brell;
using namespace brell::testing;

namespace {

class EngineCountsTest : public ::testing::Test, protected EngineFixture {
protected:
    void SetUp() override {
        if (!systemCallsAreWatched()) GTEST_SKIP() << "system calls can't be counted here";
    }
    std::filesystem::path script() const { return journalDirectory / RestoreScript::fileName; }
};

TEST_F(EngineCountsTest, AChangeIsTwoSavesAndAScript) {
    engine.apply(tweak("finder.show_hidden"));
    const auto counted = [&](auto&& action) {
        const CountedCalls calls(folder.path);
        action();
        EXPECT_EQ(calls.of(SystemCall::open, journal.fileURL()), 0u);
        EXPECT_EQ(calls.of(SystemCall::fsync, journalDirectory), calls.of(SystemCall::fsync) / 2);
        return std::vector<std::size_t>{calls.of(SystemCall::rename, journal.fileURL()),
                                        calls.of(SystemCall::rename, script()), calls.of(SystemCall::rename),
                                        calls.of(SystemCall::fsync)};
    };
    // Two preference keys in one file; each file synchronise with one of its folder.
    EXPECT_EQ(counted([&] { engine.apply(tweak("dock.magnify")); }),
              (std::vector<std::size_t>{2, 1, 3 + 2, 6}));
    EXPECT_EQ(counted([&] { engine.turnOff(tweak("dock.magnify"), false); }),
              (std::vector<std::size_t>{1, 1, 2 + 2, 4}));
    // Of many that are undone at once the script is written once a second and at the end.
    std::vector<Uuid> ids;
    for (const char* id : {"dock.size", "dock.autohide", "dock.magnify", "finder.path_bar"})
        ids.push_back(engine.apply(tweak(id)).id);
    ids.push_back(Uuid::random());  // of no entry
    RestoreAllOutcome outcome;
    EXPECT_EQ(counted([&] {
                  outcome = engine.restoreSelected(ids, {}, [&](std::size_t done, std::size_t) {
                      if (done == 1) now += std::chrono::seconds(1);
                      return true;
                  });
              }),
              (std::vector<std::size_t>{4, 2, 6 + 5, 12}));
    EXPECT_EQ(outcome.restored.size(), 4u);
    EXPECT_EQ(outcome.failed.size(), 0u);
    files.markForced({"com.apple.dock", "largesize"});
    EXPECT_EQ(counted([&] { engineFailure([&] { engine.apply(tweak("dock.magnify")); }); }),
              (std::vector<std::size_t>{0, 0, 0, 0}));
}

TEST_F(EngineCountsTest, AStatusOfEverythingOpensEachFileOnceAndWritesNothing) {
    for (const Tweak& each : catalog.all()) engine.apply(each);
    const auto before = everythingIn(folder.path);

    const CountedCalls calls(folder.path);
    PlistFileStore freshFiles(folder.path / "preferences", TweakCatalog::allowedDomains());
    EngineRun fresh(freshFiles, catalog, journalDirectory, clock);
    const auto looked = calls.of(SystemCall::stat, journal.fileURL());
    for (const StatusReading& reading : fresh.engine.statuses(catalog.available(26)))
        EXPECT_TRUE(std::holds_alternative<OnByBrell>(std::get<TweakStatus>(reading).state));

    EXPECT_EQ(calls.of(SystemCall::open, journal.fileURL()), 1u);
    EXPECT_EQ(calls.of(SystemCall::stat, journal.fileURL()), looked + 1);
    for (const std::string& name : namesIn(folder.path / "preferences")) {
        EXPECT_EQ(calls.of(SystemCall::open, folder.path / "preferences" / name), 1u) << name;
        // Once more when the journal has been read: an applied change may have drifted since.
        EXPECT_EQ(calls.of(SystemCall::stat, folder.path / "preferences" / name), 1u) << name;
    }
    EXPECT_EQ(calls.of(SystemCall::open), 1 + namesIn(folder.path / "preferences").size());
    EXPECT_EQ(calls.of(SystemCall::write) + calls.of(SystemCall::rename) + calls.of(SystemCall::fsync), 0u);
    EXPECT_EQ(everythingIn(folder.path), before);
}

}  // namespace
