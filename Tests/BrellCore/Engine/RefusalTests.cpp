// The engine's refusals: each has its words and leaves everything as it was.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <thread>

#include "Tests/Support/EngineFixture.h"

using namespace brell;
using namespace brell::testing;

namespace {

struct Refusal {
    std::string name;
    std::function<void(EngineFixture&)> prepare;
    std::function<void(EngineFixture&)> attempt;
    EngineFailure expected;
};

void nothing(EngineFixture&) {}

std::function<void(EngineFixture&)> applying(std::string id) {
    return [id](EngineFixture& brell) { brell.engine.apply(brell.tweak(id)); };
}
std::function<void(EngineFixture&)> turningOff(std::string id) {
    return [id](EngineFixture& brell) { brell.engine.turnOff(brell.tweak(id), true); };
}
std::function<void(EngineFixture&)> applyingValues(std::string id, std::vector<PrefValue> values) {
    return [id, values](EngineFixture& brell) { brell.engine.apply(brell.tweak(id), values); };
}
// The second key of a tweak moved to another domain.
std::function<void(EngineFixture&)> applyingInDomain(std::string domain) {
    return [domain](EngineFixture& brell) {
        Tweak tweak = brell.tweak("dock.magnify");
        tweak.writes[1].key.domain = domain;
        brell.engine.apply(tweak);
    };
}

Refused alreadyActive(const std::string& status) {
    return {"Magnify icons under the pointer already has an active change (" + status +
            "); turn it off first."};
}

std::vector<Refusal> refusals() {
    const Uuid unknown = Uuid::parse("0A1B2C3D-4E5F-4071-8293-A4B5C6D7E8F9").value();
    return {
        {"not offered here", nothing,
         [](EngineFixture& brell) {
             Tweak tweak = brell.tweak("dock.magnify");
             tweak.availableMajors = {14, 15};
             brell.engine.apply(tweak);
         },
         Refused{"Magnify icons under the pointer is not offered on macOS 26."}},
        {"applied already", applying("dock.magnify"), applying("dock.magnify"), alreadyActive("applied")},
        {"reset of what is applied", applying("dock.magnify"),
         [](EngineFixture& brell) { brell.engine.resetToDefault(brell.tweak("dock.magnify")); },
         alreadyActive("applied")},
        {"interrupted before", [](EngineFixture& brell) { brell.interrupt("dock.magnify"); },
         applying("dock.magnify"), alreadyActive("capturing")},
        {"protected domain", nothing, applyingInDomain("com.apple.security.agent"),
         Refused{"com.apple.security.agent is never changed."}},
        {"unknown domain", nothing, applyingInDomain("org.example.editor"),
         StoreFailure(DomainNotAllowed{"org.example.editor"})},
        {"per host before managed",
         [](EngineFixture& brell) {
             brell.files.markByHost(largeSize);
             brell.files.markForced(largeSize);
         },
         applying("dock.magnify"),
         Refused{"com.apple.dock largesize is set per host; Brell does not change it here."}},
        {"managed", [](EngineFixture& brell) { brell.files.markForced(largeSize); }, applying("dock.magnify"),
         Refused{"com.apple.dock largesize is managed by a profile; a change would have no effect."}},
        {"another type stored", [](EngineFixture& brell) { brell.files.markUnsupported(largeSize); },
         applying("dock.magnify"), StoreFailure(UnsupportedType{largeSize, "dictionary"})},
        {"a number that can't be saved",
         [](EngineFixture& brell) {
             brell.files.write(NAN, {"com.apple.dock", "autohide-delay"});
         },
         applying("dock.autohide_instant"),
         Refused{"com.apple.dock autohide-delay can't be changed: the number nan can't be saved."}},
        {"text that can't be saved", nothing, applyingValues("shot.folder", {"/Users/sam/\xC3"}),
         Refused{"com.apple.screencapture location can't be changed: text that is not UTF-8 can't be "
                 "saved."}},
        {"number of values", nothing, applyingValues("dock.magnify", {true}),
         Refused{"dock.magnify: 1 values for 2 keys."}},
        {"types of values", nothing, applyingValues("dock.magnify", {true, 80.0}),
         Refused{"dock.magnify: largesize takes a int, not a double."}},
        {"off", nothing, turningOff("dock.magnify"), Refused{"Magnify icons under the pointer is not on."}},
        {"on by default", nothing, turningOff("shot.date_in_name"),
         Refused{"Date and time in the file name is not on."}},
        {"off, per host", [](EngineFixture& brell) { brell.files.markByHost(magnification); },
         turningOff("dock.magnify"),
         Refused{"Magnify icons under the pointer is set per host; Brell does not change it."}},
        {"off, managed", [](EngineFixture& brell) { brell.files.markForced(magnification); },
         turningOff("dock.magnify"), Refused{"Magnify icons under the pointer is managed by a profile."}},
        {"off, another type", [](EngineFixture& brell) { brell.files.markUnsupported(magnification); },
         turningOff("dock.magnify"), Refused{"com.apple.dock magnification holds a dictionary"}},
        {"unknown entry", nothing, [=](EngineFixture& brell) { brell.engine.restore(unknown, true); },
         NotActive{unknown}},
    };
}

TEST(RefusalTest, EachHasItsWordsAndLeavesEveryFileAsItWas) {
    for (const Refusal& refusal : refusals()) {
        SCOPED_TRACE(refusal.name);
        EngineFixture brell;
        refusal.prepare(brell);
        brell.store.changes.clear();
        const auto before = everythingIn(brell.folder.path);
        EXPECT_EQ(engineFailure([&] { refusal.attempt(brell); }), refusal.expected);
        EXPECT_EQ(everythingIn(brell.folder.path), before);
        EXPECT_EQ(brell.store.changes, Texts{});
    }
}

TEST(RefusalTest, ASecondChangeOfAnAgentIsRefusedToEveryRun) {
    EngineFixture brell;
    EngineRun other = brell.anotherRun();
    brell.switchAgent();
    EXPECT_EQ(messageOf([&] { other.engine.beginAgentChange(syncAgent.label, syncAgent); }),
              "org.example.sync already has an active change; restore it from the Journal first.");
    EXPECT_EQ(brell.journal.active().size(), 1u);
}

// Several runs of the program over one journal and one preferences folder.
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
        std::this_thread::sleep_for(
            std::chrono::milliseconds(100));  // if it does not wait by then, it has less to get wrong
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

    const Uuid drifted = engine.apply(tweak("dock.magnify")).id;
    files.write(41, largeSize);
    EXPECT_EQ(
        failureWhile([&](const auto&) { files.write(80, largeSize); }, [&] { engine.keepTheirs(drifted); }),
        EngineFailure(Refused{"Magnify icons under the pointer was not changed outside Brell; there is "
                              "nothing else to keep."}));
}

}  // namespace
