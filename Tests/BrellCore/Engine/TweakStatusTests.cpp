#include <gtest/gtest.h>

#include "BrellCore/Engine/TweakStatus.h"

#include "Tests/Support/EngineFixture.h"

using namespace brell;
using namespace brell::testing;

namespace {

const PrefKey orientation{"com.apple.dock", "orientation"};

class TweakStatusTest : public ::testing::Test, protected EngineFixture {
protected:
    TweakStatus status(std::string_view id) { return engine.status(tweak(id)); }
    TweakState state(std::string_view id) { return status(id).state; }
    // Of a tweak whose keys hold the same for this user as for apps, and none of its choices.
    TweakStatus holding(std::string_view id, TweakState state, const std::vector<StoredValue>& values) {
        return {tweak(id), std::move(state), values, values, std::nullopt};
    }
};

TEST_F(TweakStatusTest, WithoutAnEntryTheStoredValuesDecide) {
    // Two keys: only both targets together are the tweak.
    EXPECT_EQ(status("dock.magnify"), holding("dock.magnify", Off{}, {{}, {}}));
    files.write(true, magnification);
    EXPECT_EQ(state("dock.magnify"), TweakState(Off{}));
    files.write(80, largeSize);
    EXPECT_EQ(status("dock.magnify"),
              holding("dock.magnify", SetBeforeBrell{}, {PrefValue(true), PrefValue(80)}));
    files.write(1, magnification);  // a number is not a truth value
    EXPECT_EQ(state("dock.magnify"), TweakState(Off{}));
    files.write(true, magnification);
    files.write(80.0, largeSize);
    EXPECT_EQ(state("dock.magnify"), TweakState(Off{}));
}

TEST_F(TweakStatusTest, OnlyASwitchWhoseEveryTargetIsTheDefaultIsOnByDefault) {
    const PrefKey date{"com.apple.screencapture", "include-date"};
    EXPECT_EQ(state("shot.date_in_name"), TweakState(OnByDefault{}));
    files.write(false, date);
    EXPECT_EQ(state("shot.date_in_name"), TweakState(Off{}));
    files.write(true, date);
    EXPECT_EQ(state("shot.date_in_name"), TweakState(SetBeforeBrell{}));

    EXPECT_EQ(state("dock.position"), TweakState(Off{}));             // a choice, although it is the default
    EXPECT_EQ(state("finder.drives_on_desktop"), TweakState(Off{}));  // not every target is
    EXPECT_EQ(state("finder.no_dsstore_on_shares"), TweakState(Off{}));  // no default is known
}

TEST_F(TweakStatusTest, TheCurrentChoiceIsJudgedOnWhatAppsSee) {
    files.registerSystemDefault("bottom", orientation);
    TweakStatus position = status("dock.position");
    EXPECT_EQ(position.currentChoiceID, "bottom");
    EXPECT_EQ(position.effective, std::vector<StoredValue>{PrefValue("bottom")});
    EXPECT_EQ(position.exact, std::vector<StoredValue>{StoredValue::absent()});
    EXPECT_EQ(position.state, TweakState(Off{}));

    files.write(64, tileSize);
    EXPECT_EQ(status("dock.size").currentChoiceID, "large");
    files.write(64.0, tileSize);
    EXPECT_EQ(status("dock.size").currentChoiceID, std::nullopt);
    files.write("left", orientation);
    position = status("dock.position");
    EXPECT_EQ(position.currentChoiceID, "left");
    EXPECT_EQ(position.state, TweakState(Off{}));
}

TEST_F(TweakStatusTest, AKeyThatIsNotOursToJudgeEndsTheReading) {
    files.markForced(largeSize);
    EXPECT_EQ(status("dock.magnify"), holding("dock.magnify", Managed{"largesize"}, {}));
    files.markByHost(largeSize);
    EXPECT_EQ(status("dock.magnify"), holding("dock.magnify", PerHost{"largesize"}, {}));
    files.markUnsupported(magnification);  // the first key is met first
    EXPECT_EQ(status("dock.magnify"),
              holding("dock.magnify", Unsupported{"com.apple.dock magnification holds a dictionary"}, {}));

    setContents(folder.path / "preferences" / "com.apple.finder.plist", "not a property list");
    EXPECT_TRUE(thrownBy<StoreError>([&] { status("finder.path_bar"); }));
    Tweak foreign = tweak("finder.path_bar");
    foreign.writes[0].key.domain = "org.example.editor";
    EXPECT_EQ(failureOf<StoreError>([&] { engine.status(foreign); }),
              StoreFailure(DomainNotAllowed{"org.example.editor"}));
}

TEST_F(TweakStatusTest, AnAppliedEntryHoldsUntilAKeyHoldsSomebodyElsesValue) {
    files.write(64, largeSize);
    const Uuid on = engine.apply(tweak("dock.magnify")).id;
    EXPECT_EQ(state("dock.magnify"), TweakState(OnByBrell{on}));
    files.remove(largeSize);
    EXPECT_EQ(status("dock.magnify"),
              holding("dock.magnify", ChangedOutsideBrell{on}, {PrefValue(true), {}}));
    files.write(64, largeSize);  // its original: an undo that was not finished looks like this
    EXPECT_EQ(state("dock.magnify"), TweakState(OnByBrell{on}));

    // The status reads each key first; the comparison with the entry is the later reading.
    store.goWrong(Fault::refuses, "exactValue " + largeSize.rendered(), 2);
    EXPECT_EQ(state("dock.magnify"), TweakState(ChangedOutsideBrell{on}));
    store.heal();

    files.write("left", orientation);
    const Uuid reset = engine.resetToDefault(tweak("dock.position")).id;
    EXPECT_EQ(state("dock.position"), TweakState(OffByBrell{reset}));
    files.write("right", orientation);
    EXPECT_EQ(state("dock.position"), TweakState(ChangedOutsideBrell{reset}));

    engine.restore(on, false);
    EXPECT_EQ(state("dock.magnify"), TweakState(Off{}));  // an ended entry says nothing
}

TEST_F(TweakStatusTest, AnInterruptedEntryIsNeverCompared) {
    const Uuid id = interrupt("dock.magnify").id;
    EXPECT_EQ(state("dock.magnify"), TweakState(OnByBrell{id}));  // though no key was written
    EXPECT_EQ(engine.driftedEntries(), std::vector<JournalEntry>{});
}

}  // namespace
