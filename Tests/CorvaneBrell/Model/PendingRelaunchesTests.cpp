#include "CorvaneBrell/Model/PendingRelaunches.h"

#include <gtest/gtest.h>

#include <thread>

#include "BrellCore/Preferences/PlistFileStore.h"
#include "CorvaneBrell/Model/OwnPreferences.h"
#include "Tests/Support/Testing.h"

using namespace brell;
using namespace brell::testing;

namespace {

class PendingRelaunchesTest : public ::testing::Test {
protected:
    void change(const std::string& id, const std::string& before, const std::string& now) {
        const std::map<std::string, std::string> held{{id, before}}, holds{{id, now}};
        noteChange(pending, {held, holds}, catalog, processOf);
    }

    const TweakCatalog catalog{"/Users/sam"};
    std::int64_t dock = 312;
    const ProcessOf processOf = [this](EffectClass effect) {
        return effect == EffectClass::dockRelaunch ? dock : 0;
    };
    PendingRelaunches pending;
    TemporaryFolder folder;
};

TEST_F(PendingRelaunchesTest, AChangeWaitsUntilItsAppShowsItOrItIsBack) {
    change("kb.hold_to_repeat", "false", "true");  // shown without a relaunch
    EXPECT_TRUE(pending.empty());
    change("dock.autohide", "false", "true");
    EXPECT_EQ(pending, (PendingRelaunches{{"dock.autohide", {"false", 312}}}));
    EXPECT_EQ(pendingEffects(pending, catalog), std::set{EffectClass::dockRelaunch});
    change("dock.autohide", "true", "false");
    EXPECT_TRUE(pending.empty());
    change("dock.autohide", "true", "false");  // after the Dock has shown it
    EXPECT_EQ(pending, (PendingRelaunches{{"dock.autohide", {"true", 312}}}));
    const auto left = [&](const std::function<void(PendingRelaunches&)>& drop) {
        PendingRelaunches copy = pending;
        drop(copy);
        return copy.size();
    };
    EXPECT_EQ(left([&](auto& all) { dropEffect(all, catalog, EffectClass::finderRelaunch); }), 1u);
    EXPECT_EQ(left([&](auto& all) { dropEffect(all, catalog, EffectClass::dockRelaunch); }), 0u);
    EXPECT_EQ(left([&](auto& all) { dropBack(all, {}, {{"dock.autohide", "unreadable"}}); }), 1u);
    EXPECT_EQ(left([&](auto& all) { dropBack(all, {}, {}); }), 0u) << "not offered any more";
    for (const auto& [process, expected] : std::map<std::int64_t, std::size_t>{{312, 1}, {0, 1}, {313, 0}}) {
        dock = process;
        EXPECT_EQ(left([&](auto& all) { dropShown(all, catalog, processOf); }), expected) << process;
    }
}

TEST_F(PendingRelaunchesTest, RunsThatNoteSomethingConcurrentlyLoseNothing) {
    constexpr int each = 40;
    const auto noteAll = [&](const std::string& window) {
        PlistFileStore store(folder.path / "preferences", OwnPreferences::domains());
        for (int i = 0; i < each; ++i)
            updatePendingRelaunches(store, folder.path / "lock", [&](auto& all) {
                all.emplace(window + std::to_string(i), PendingRelaunch{"false", i});
            });
    };
    std::thread other(noteAll, "one");
    noteAll("other");
    other.join();
    PlistFileStore store(folder.path / "preferences", OwnPreferences::domains());
    const auto nothing = [](PendingRelaunches&) {};
    const PendingRelaunches kept =
        updatePendingRelaunches(store, folder.path / "another-lock", nothing).first;
    EXPECT_EQ(kept.size(), 2u * each);
    EXPECT_EQ(kept.at("one7"), (PendingRelaunch{"false", 7}));
    EXPECT_EQ(namesIn(folder.path), (Names{"lock", "preferences"})) << "nothing to write, no lock";

    setContents(folder.path / "preferences" / "com.corvane.brell.plist", "damaged");
    EXPECT_NE(updatePendingRelaunches(store, std::nullopt,
                                      [](auto& all) {
                                          all.emplace("a", PendingRelaunch{"true", 0});
                                      })
                  .second,
              "");
}

}  // namespace
