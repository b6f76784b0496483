// Several programs and threads over one journal and one preferences folder.

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <thread>

#include "Tests/Support/EngineFixture.h"

using namespace brell;
using namespace brell::testing;
using namespace std::chrono_literals;

namespace {

constexpr std::array<const char*, 4> contested{"dock.magnify", "dock.size", "finder.drives_on_desktop",
                                               "finder.path_bar"};

std::map<std::string, int> activeByTweak(Journal& journal) {
    std::map<std::string, int> counts;
    for (const JournalEntry& entry : journal.active()) ++counts[entry.tweakID];
    return counts;
}

// Whether somebody else was first, which is the only thing that may go wrong.
bool isLostRace(const EngineError& error) {
    const auto* refused = std::get_if<Refused>(&error.failure());
    return std::holds_alternative<NotActive>(error.failure()) ||
           (refused && (refused->text.find("already has an active change") != std::string::npos ||
                        refused->text.ends_with("is not on.")));
}

// Applies and turns off the same few tweaks as everybody else; gives the entries it made.
std::vector<Uuid> contend(TweakEngine& engine, const TweakCatalog& catalog, int rounds) {
    std::vector<Uuid> made;
    const auto unlessSomebodyWasFirst = [](auto&& action) {
        try {
            action();
        } catch (const EngineError& error) {
            if (!isLostRace(error)) throw;
        }
    };
    for (int round = 0; round < rounds; ++round)
        for (const char* id : contested) {
            const Tweak& tweak = *catalog.tweak(id);
            unlessSomebodyWasFirst([&] { made.push_back(engine.apply(tweak).id); });
            // The lock is not fair: those who wait for it only get it when nobody wants it for a while.
            std::this_thread::sleep_for(5ms);
            unlessSomebodyWasFirst([&] { engine.turnOff(tweak, true); });
        }
    return made;
}

class EngineProcessesTest : public ::testing::Test, protected EngineFixture {
protected:
    EngineProcessesTest() {
        files.write(33, {"com.apple.dock", "tilesize"});
        files.write(false, {"com.apple.finder", "ShowPathbar"});
        original = files.snapshot();
    }

    // A child process with objects of its own; it leaves the ids of its entries in a file.
    pid_t startChild(int number, int rounds) {
        const pid_t child = ::fork();
        if (child != 0) return child;
        try {
            PlistFileStore ownFiles(folder.path / "preferences", TweakCatalog::allowedDomains());
            EngineRun own(ownFiles, catalog, journalDirectory, clock);
            std::string ids;
            for (const Uuid& id : contend(own.engine, catalog, rounds)) ids += id.text() + "\n";
            setContents(idsOf(number), ids);
            std::_Exit(0);
        } catch (const std::exception& error) {
            setContents(idsOf(number), error.what());
            std::_Exit(1);
        }
    }

    std::filesystem::path idsOf(int number) const { return folder.path / ("child" + std::to_string(number)); }

    void expectEverythingFoundAndPutBack(const std::set<std::string>& made) {
        std::set<std::string> found;
        for (const JournalEntry& entry : journal.all()) {
            EXPECT_EQ(entry.status, EntryStatus::restored);
            found.insert(entry.id.text());
        }
        EXPECT_EQ(found, made);
        EXPECT_GE(made.size(), contested.size());
        EXPECT_EQ(journal.history().size(), 3 * made.size());  // captured, applied, restored
        EXPECT_EQ(files.snapshot(), original);
        EXPECT_EQ(script(), RestoreScript::render({}, now));
        EXPECT_EQ(namesIn(journalDirectory),
                  (std::set<std::string>{".journal.lock", "history", "journal.json", "restore.sh"}));
    }

    std::map<std::string, PlistFileStore::Values> original;
};

TEST_F(EngineProcessesTest, NothingIsLostAndNoTweakIsEverActiveTwice) {
    constexpr int children = 4;
    std::set<pid_t> running;
    for (int number = 0; number < children; ++number) running.insert(startChild(number, 6));

    while (!running.empty()) {
        for (const auto& [id, count] : activeByTweak(*anotherRun().journal)) EXPECT_EQ(count, 1) << id;
        for (const auto& [id, count] : activeByTweak(journal)) EXPECT_EQ(count, 1) << id;
        int status = 0;
        const pid_t ended = ::waitpid(-1, &status, WNOHANG);
        if (ended <= 0) continue;
        running.erase(ended);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }

    std::set<std::string> made;
    for (int number = 0; number < children; ++number) {
        std::istringstream ids(contentsOf(idsOf(number)));
        for (std::string id; std::getline(ids, id);) EXPECT_TRUE(made.insert(id).second);
    }
    expectEverythingFoundAndPutBack(made);
}

using EngineConcurrencyTest = EngineProcessesTest;

TEST_F(EngineConcurrencyTest, ThreadsShareOneEngineWhileOthersHaveTheirOwn) {
    EngineRun other = anotherRun();
    PlistFileStore ownFiles(folder.path / "preferences", TweakCatalog::allowedDomains());
    EngineRun shared(ownFiles, catalog, journalDirectory, clock);
    EngineRun alone(files, catalog, journalDirectory, clock);

    std::array<std::vector<Uuid>, 3> made;
    std::array<TweakEngine*, 3> engines{&shared.engine, &shared.engine, &alone.engine};
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < engines.size(); ++i)
        threads.emplace_back([&, i] { made[i] = contend(*engines[i], catalog, 3); });
    std::thread reader([&] {
        for (int round = 0; round < 200; ++round) {
            for (const auto& [id, count] : activeByTweak(*other.journal)) EXPECT_EQ(count, 1) << id;
            for (const char* id : contested) shared.engine.status(*catalog.tweak(id));
        }
    });
    for (std::thread& thread : threads) thread.join();
    reader.join();

    std::set<std::string> all;
    for (const std::vector<Uuid>& some : made)
        for (const Uuid& id : some) EXPECT_TRUE(all.insert(id.text()).second);
    expectEverythingFoundAndPutBack(all);
}

TEST_F(EngineConcurrencyTest, WhatWasReadBeforeTheLockIsReadAgainUnderIt) {
    JournalEntry theirs = engine.apply(tweak("dock.size"));
    engine.restore(theirs.id, false);
    theirs.id = Uuid::random();
    EngineRun other = anotherRun();
    // Performs the action, which reads and then waits for the lock, while this happens under the lock.
    const auto failureWhile = [&](auto&& happening, auto&& action) {
        auto held = std::make_optional(other.journal->exclusive());
        std::optional<EngineFailure> failure;
        std::thread waiting([&] { failure = engineFailure(action); });
        std::this_thread::sleep_for(100ms);  // if it does not wait by then, it has less to get wrong
        happening(*held);
        held.reset();
        waiting.join();
        return failure;
    };
    EXPECT_EQ(failureWhile([&](const auto& held) { other.journal->upsert(theirs, held); },
                           [&] { engine.apply(tweak("dock.size")); }),
              EngineFailure(Refused{"Icon size already has an active change (applied); turn it off first."}));

    const PrefKey pathBar{"com.apple.finder", "ShowPathbar"};
    files.write(true, pathBar);  // set before Brell, so turning off would remove it
    EXPECT_EQ(failureWhile([&](const auto&) { files.write(false, pathBar); },
                           [&] { engine.turnOff(tweak("finder.path_bar"), true); }),
              EngineFailure(Refused{"Show the path bar is not on."}));
    EXPECT_EQ(files.snapshot(), original);
}

}  // namespace
