// The preferences go wrong at every call, in every way: everything comes back to what it was.

#include <gtest/gtest.h>

#include <functional>

#include "BrellCore/Preferences/CFPreferencesStore.h"
#include "Tests/Support/EngineFixture.h"
#include "Tests/Support/StandInDefaults.h"

using namespace brell;
using namespace brell::testing;

namespace {

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
    std::map<std::string, PlistFileStore::Values> original;
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

// A user starts the program anew, recovers, restores everything. Nothing has to be
// confirmed: nobody else changed anything.
void expectTheWayBack(Lived& brell) {
    EngineRun next = brell.anotherRun();
    EXPECT_EQ(next.engine.recoverInterrupted().failed.size(), 0u);
    EXPECT_EQ(next.engine.driftedEntries(), std::vector<JournalEntry>{});
    next.engine.restoreAll({});
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

// Equal to the value in number or in words, and of another type.
PrefValue alikeOfAnotherType(const PrefValue& value) {
    if (const auto* integer = value.as<std::int64_t>()) return static_cast<double>(*integer);
    if (const auto* real = value.as<double>()) return static_cast<std::int64_t>(*real);
    if (const auto* flag = value.as<bool>()) return *flag ? 1 : 0;
    return PrefValue::StringArray{value.rendered()};
}

class UserDefaultsUndoTest : public UndoSweepTest, protected EngineFixture {
protected:
    const std::shared_ptr<StandInDefaults> defaults = std::make_shared<StandInDefaults>();
    CFPreferencesStore userDefaults{TweakCatalog::allowedDomains(), true, defaults};
    EngineRun overDefaults{userDefaults, catalog, folder.path / "real journal", clock};
};

TEST_F(UserDefaultsUndoTest, EveryTweakIsAppliedOverAnotherTypeAndUndoneExactly) {
    for (const Tweak& each : catalog.all())
        for (const Write& write : each.writes)
            defaults->saveElsewhere(write.key, alikeOfAnotherType(write.target).propertyListObject());
    const auto original = defaults->saved;

    for (const Tweak& each : catalog.all()) {
        overDefaults.engine.apply(each, each.targets());
        for (const Write& write : each.writes)
            EXPECT_EQ(userDefaults.exactValue(write.key), StoredValue(write.target)) << write.key.rendered();
    }
    EXPECT_EQ(overDefaults.engine.restoreAll({}).restored.size(), catalog.all().size());
    EXPECT_EQ(defaults->saved, original);
}

TEST_F(UserDefaultsUndoTest, AKindThatBrellNeverWritesGivesWayOnlyToAConfirmedUndo) {
    const PrefKey tileSize{"com.apple.dock", "tilesize"};
    const std::string refusal = "com.apple.dock tilesize holds a dictionary, which Brell does not change.";
    const Tweak& size = tweak("dock.size");
    const auto storeElsewhere = [&] { defaults->saveElsewhere(tileSize, PlistValue{PlistDictionary{}}); };
    FaultyStore faulty{userDefaults};
    EngineRun other(faulty, catalog, folder.path / "real journal", clock);
    faulty.meanwhile = storeElsewhere;
    faulty.goWrong(Fault::refuses, "write");
    const StoreFailure reason = FaultyStore::simulated("write " + tileSize.rendered());
    EXPECT_EQ(engineFailure([&] { other.engine.apply(size); }), EngineFailure(reason));

    const auto foreign = defaults->saved;
    const JournalEntry entry = overDefaults.journal->activeEntry(size.id).value();
    EXPECT_EQ(entry.status, EntryStatus::capturing);
    EXPECT_EQ(entry.failure, describe(reason) + " " + refusal);
    EXPECT_EQ(overDefaults.engine.recoverInterrupted(),
              (RestoreAllOutcome{{}, {}, {{entry.id, refusal}}, {}}));
    EXPECT_EQ(messageOf([&] { overDefaults.engine.restore(entry.id, false); }), refusal);
    EXPECT_EQ(defaults->saved, foreign);
    EXPECT_EQ(overDefaults.journal->activeEntry(size.id), entry);

    EXPECT_EQ(overDefaults.engine.restore(entry.id, true).status, EntryStatus::restored);
    EXPECT_EQ(defaults->saved, StandInDefaults::Values());

    // The other keys of an interrupted change come back all the same.
    const Tweak& instant = tweak("dock.autohide_instant");
    breakOff(overDefaults.engine, instant);
    defaults->saveElsewhere(instant.writes[1].key, instant.writes[1].target.propertyListObject());
    defaults->saveElsewhere(instant.writes[0].key, PlistValue{PlistDictionary{}});
    EXPECT_EQ(overDefaults.engine.recoverInterrupted().failed.size(), 1u);
    EXPECT_EQ(userDefaults.exactValue(instant.writes[1].key), StoredValue::absent());
    defaults->saved.clear();
    EXPECT_EQ(overDefaults.engine.recoverInterrupted().restored.size(), 1u);
    const JournalEntry applied = overDefaults.engine.apply(size);
    storeElsewhere();
    EXPECT_EQ(engineFailure([&] { overDefaults.engine.restore(applied.id, false); }),
              EngineFailure(Drift{applied.id}));
    EXPECT_EQ(overDefaults.engine.restore(applied.id, true).status, EntryStatus::restored);
    EXPECT_EQ(defaults->saved, StandInDefaults::Values());
}

}  // namespace
