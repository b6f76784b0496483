// Whatever goes wrong, and whenever: afterwards everything is as it was, or an active entry says how to get
// there.

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <functional>

#include "Tests/Support/EngineFixture.h"
#include "Tests/Support/MemoryFolder.h"
#include "Tests/Support/SystemCalls.h"

using namespace brell;
using namespace brell::testing;

namespace {

using Preferences = std::map<std::string, PlistFileStore::Values>;

constexpr const char* drives = "finder.drives_on_desktop";
constexpr const char* magnify = "dock.magnify";

struct Lived : EngineFixture {
    Lived() {
        files.write(false, {"com.apple.finder", "ShowExternalHardDrivesOnDesktop"});
        files.write("yes", {"com.apple.finder", "ShowRemovableMediaOnDesktop"});
        files.write(91.5, {"com.apple.dock", "largesize"});
        files.write(true, {"com.apple.dock", "autohide"});
        original = files.snapshot();
    }
    Preferences original;
};

struct Operation {
    std::string name;
    std::function<void(Lived&)> prepare;
    std::function<void(Lived&)> perform;
};

std::vector<Operation> operations() {
    const auto nothing = [](Lived&) {};
    const auto applied = [](Lived& brell) {
        brell.engine.apply(brell.tweak(drives));
        brell.engine.apply(brell.tweak(magnify));
    };
    return {
        {"apply", nothing, [](Lived& brell) { brell.engine.apply(brell.tweak(drives)); }},
        {"reset", nothing, [](Lived& brell) { brell.engine.turnOff(brell.tweak("dock.autohide"), false); }},
        {"turnOff", applied, [](Lived& brell) { brell.engine.turnOff(brell.tweak(drives), false); }},
        {"restore", applied,
         [](Lived& brell) { brell.engine.restore(brell.journal.activeEntry(drives)->id, true); }},
        {"restoreAll", applied, [](Lived& brell) { brell.engine.restoreAll({}); }},
        {"recover", [](Lived& brell) { brell.interrupt(drives); },
         [](Lived& brell) { brell.engine.recoverInterrupted(); }},
    };
}

StoredValue valueIn(const Preferences& preferences, const PrefKey& key) {
    const auto domain = preferences.find(key.domain);
    if (domain == preferences.end()) return {};
    const auto value = domain->second.find(key.name);
    return value == domain->second.end() ? StoredValue() : StoredValue(value->second);
}

// Whether the active entries alone bring these preferences back to the original ones.
::testing::AssertionResult leadsBack(Lived& brell, const std::vector<JournalEntry>& entries) {
    Preferences now = brell.files.snapshot();
    for (const JournalEntry& entry : entries) {
        for (const JournaledWrite& write : entry.writes) {
            if (!entry.isActive()) continue;
            if (write.original != valueIn(brell.original, write.key))
                return ::testing::AssertionFailure() << write.key.rendered() << " has a wrong original";
            PlistFileStore::Values& values = now[write.key.domain];
            values.erase(write.key.name);
            if (write.original.value) values.emplace(write.key.name, *write.original.value);
        }
    }
    std::erase_if(now, [](const auto& domain) { return domain.second.empty(); });
    if (now == brell.original) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "a changed key is in no active entry";
}

// What a user does after it: starts the program anew, recovers, restores everything and confirms each drift.
void expectTheWayBack(Lived& brell) {
    EngineRun next = brell.anotherRun();
    EXPECT_TRUE(leadsBack(brell, next.journal->all()));
    EXPECT_EQ(next.engine.recoverInterrupted().failed.size(), 0u);
    std::set<Uuid> confirmed;
    for (const JournalEntry& entry : next.engine.driftedEntries()) confirmed.insert(entry.id);
    next.engine.restoreAll(confirmed);
    EXPECT_EQ(next.journal->active(), std::vector<JournalEntry>{});
    EXPECT_EQ(brell.files.snapshot(), brell.original);
}

// Performs the operation with every n-th call of the store failing, one after the other.
void sweep(const Operation& operation, Fault fault, bool onlyOnce) {
    for (int n = 1; n < 200; ++n) {
        SCOPED_TRACE(operation.name + ", call " + std::to_string(n) + (onlyOnce ? "" : " and later"));
        Lived brell;
        operation.prepare(brell);
        brell.store.goWrong(fault, "", n, onlyOnce ? n : FaultyStore::forever);
        const auto failure = engineFailure([&] { operation.perform(brell); });
        const bool reached = brell.store.counted() >= n;
        brell.store.heal();
        expectTheWayBack(brell);
        const std::string script = brell.script();
        EXPECT_TRUE(script.empty() || script == RestoreScript::render({}, brell.now)) << script;
        if (::testing::Test::HasFailure()) return;
        if (reached) continue;
        EXPECT_EQ(failure, std::nullopt);
        EXPECT_GT(n, 3);
        return;
    }
    ADD_FAILURE() << "the operation never ends";
}

class UndoSweepTest : public ::testing::Test {
protected:
    UndoSweepTest() { keepFoldersInMemory(); }
};

TEST_F(UndoSweepTest, EveryFailingStoreCallLeavesAWayBack) {
    for (const Operation& operation : operations()) {
        for (const bool onlyOnce : {true, false}) sweep(operation, Fault::refuses, onlyOnce);
        sweep(operation, Fault::forgets, true);
        sweep(operation, Fault::ignores, false);
    }
}

TEST_F(UndoSweepTest, AProcessThatEndsAtAnyStoreCallLeavesAWayBack) {
    for (const Operation& operation : operations()) {
        for (int n = 1;; ++n) {
            SCOPED_TRACE(operation.name + ", ends at call " + std::to_string(n));
            Lived brell;
            operation.prepare(brell);
            const pid_t child = ::fork();
            if (child == 0) {
                brell.store.goWrong(Fault::endsProcess, "", n);
                operation.perform(brell);
                std::_Exit(1);  // n is past the last call
            }
            int status = 0;
            ASSERT_EQ(::waitpid(child, &status, 0), child);
            expectTheWayBack(brell);
            if (HasFailure() || (WIFEXITED(status) && WEXITSTATUS(status) == 1)) break;
            ASSERT_TRUE(WIFEXITED(status) && n < 200);
        }
    }
}

TEST_F(UndoSweepTest, EveryFailingSystemCallLeavesAWayBack) {
    if (!systemCallsAreWatched()) GTEST_SKIP() << "system calls can't be made to fail here";
    for (const Operation& operation : operations()) {
        for (const SystemCall call : {SystemCall::open, SystemCall::write, SystemCall::fsync,
                                      SystemCall::rename, SystemCall::close, SystemCall::read}) {
            for (int n = 1; n < 200; ++n) {
                SCOPED_TRACE(operation.name + ", call " + std::to_string(static_cast<int>(call)) +
                             ", number " + std::to_string(n));
                Lived brell;
                operation.prepare(brell);
                bool hasFailed = false;
                {
                    const FailingCall failing(brell.folder.path, call, EIO, n);
                    engineFailure([&] { operation.perform(brell); });
                    hasFailed = failing.hasFailed();
                }
                expectTheWayBack(brell);
                if (HasFailure()) return;
                if (!hasFailed) break;
            }
        }
    }
}

}  // namespace
