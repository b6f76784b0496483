// Several runs of the program over one journal and one preferences folder.

#include <gtest/gtest.h>

#include <thread>

#include "Tests/Support/EngineFixture.h"

using namespace brell;
using namespace brell::testing;
using namespace std::chrono_literals;

namespace {

class EngineConcurrencyTest : public ::testing::Test, protected EngineFixture {};

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
    EXPECT_EQ(files.exactValue(pathBar), StoredValue(false));
    EXPECT_TRUE(files.exactValue({"com.apple.dock", "tilesize"}).isAbsent());
}

}  // namespace
