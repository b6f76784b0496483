// The whole catalog over user defaults, with originals as awkward as they can be.
#include <gtest/gtest.h>

#include "BrellCore/Preferences/CFPreferencesStore.h"
#include "Tests/Support/EngineFixture.h"
#include "Tests/Support/MemoryFolder.h"
#include "Tests/Support/StandInDefaults.h"

using namespace brell;
using namespace brell::testing;

namespace {

// Equal to the value in number or in words, and of another type.
PrefValue alikeOfAnotherType(const PrefValue& value) {
    if (const auto* integer = value.as<std::int64_t>()) return static_cast<double>(*integer);
    if (const auto* real = value.as<double>()) return static_cast<std::int64_t>(*real);
    if (const auto* flag = value.as<bool>()) return *flag ? 1 : 0;
    return PrefValue::StringArray{value.rendered()};
}

struct InMemory {
    InMemory() { keepFoldersInMemory(); }
};

class UserDefaultsUndoTest : public ::testing::Test, InMemory, protected EngineFixture {
protected:
    const std::shared_ptr<StandInDefaults> defaults = std::make_shared<StandInDefaults>();
    CFPreferencesStore userDefaults{TweakCatalog::allowedDomains(), true, defaults};
    EngineRun overDefaults{userDefaults, catalog, folder.path / "real journal", clock};
};

}  // namespace

TEST_F(UserDefaultsUndoTest, EveryTweakIsAppliedOverAnotherTypeAndUndoneExactly) {
    for (const Tweak& each : catalog.all())
        for (const Write& write : each.writes)
            defaults->saveElsewhere(write.key, alikeOfAnotherType(write.target).propertyListObject());
    const auto original = defaults->saved;

    for (const Tweak& each : catalog.all()) {
        std::vector<PrefValue> values;
        for (const Write& write : each.writes) values.push_back(write.target);
        overDefaults.engine.apply(each, values);
        for (const Write& write : each.writes)
            EXPECT_EQ(userDefaults.exactValue(write.key), StoredValue(write.target)) << write.key.rendered();
    }
    const RestoreAllOutcome outcome = overDefaults.engine.restoreAll({});
    EXPECT_EQ(outcome.restored.size(), catalog.all().size());
    EXPECT_EQ(defaults->saved, original);
}

TEST_F(UserDefaultsUndoTest, WhatCouldNotBeSavedStaysInterruptedAndIsRecoveredLater) {
    const Tweak& size = tweak("dock.size");
    defaults->saveElsewhere({"com.apple.dock", "tilesize"}, PlistValue{48.0});
    const auto original = defaults->saved;
    defaults->locked = true;

    EXPECT_EQ(engineFailure([&] { overDefaults.engine.apply(size); }),
              EngineFailure(StoreFailure(SynchronizeFailed{"com.apple.dock"})));
    EXPECT_EQ(overDefaults.journal->entries(EntryStatus::capturing).size(), 1u);
    EXPECT_EQ(defaults->saved, original);

    defaults->locked = false;
    const RestoreAllOutcome recovered = overDefaults.engine.recoverInterrupted();
    EXPECT_EQ(recovered.restored.size(), 1u);
    EXPECT_EQ(overDefaults.journal->active().size(), 0u);
    EXPECT_EQ(defaults->saved, original);
}
