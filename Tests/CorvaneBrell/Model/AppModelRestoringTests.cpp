// The ways back through the model: restoring, undoing, and the questions before what others changed.

#include "CorvaneBrell/Model/TweakRowState.h"
#include "Tests/CorvaneBrell/Model/AppModelFixture.h"
#include "Tests/Support/EngineFixture.h"

namespace brell::testing {

namespace {

// All that a question asks about.
std::set<Uuid> asked(const DriftRequest& request) {
    std::set<Uuid> ids;
    for (const DriftedEntry& drifted : request.entries) ids.insert(drifted.entry.id);
    return ids;
}

}  // namespace

TEST_F(AppModelTest, RestoreAllShowsEveryKeyAndRestoresWhatWasTickedAndWhatDidNotDrift) {
    const PrefKey pathBar{"com.apple.finder", "ShowPathbar"};
    auto expected = preferences();
    open();
    apply({"dock.autohide", "finder.show_hidden", "finder.path_bar", "shot.jpg"});
    writeFromOutside(autohide, "no");
    writeFromOutside(pathBar, false);

    settled()->askRestoreAll();
    const RestoreRequest request = state().restoreRequest.value();
    EXPECT_EQ(request.steps.size(), 2u);
    EXPECT_EQ(request.steps.front(), (RestoreStep{"Save screenshots as JPEG",
                                                  "Now On, back to \"png\"",
                                                  {"com.apple.screencapture type: back to \"png\""},
                                                  false}));
    EXPECT_EQ(request.changes.title(), "Some settings were changed outside Brell");
    ASSERT_EQ(request.changes.entries.size(), 2u);
    const DriftedEntry& drifted = request.changes.entries.back();
    EXPECT_EQ(drifted.entry.tweakID, "dock.autohide");
    EXPECT_EQ(drifted.words, "Now \"no\", back to Off");
    const Uuid ticked = drifted.entry.id;

    // While the sheet is open others change what it shows: nothing is overwritten that it did not show.
    writeFromOutside(autohide, "never");
    settled()->confirmRestore({ticked});
    EXPECT_EQ(state().driftRequest.value().others.size(), 2u) << "nothing was restored";
    writeFromOutside({"com.apple.screencapture", "type"}, "tiff");
    settled()->confirmDrift({ticked});
    ASSERT_EQ(state().driftRequest.value().entries.size(), 1u);
    settled()->confirmDrift(asked(*state().driftRequest));

    expected["com.apple.finder"].insert_or_assign("ShowPathbar", PrefValue(false));
    EXPECT_EQ(preferences(), expected);
    EXPECT_EQ(model->changedTweaks(), Texts{"finder.path_bar"});
}

TEST_F(AppModelTest, AnEntryThatIsAlreadyBackClosesWithoutAsking) {
    open();
    apply({"dock.autohide"});
    writeFromOutside(autohide, false);  // what it was before
    settled()->refreshAll();
    EXPECT_EQ(tweakRowState(*model, *model->catalog().tweak("dock.autohide")).badge->text, "Not in force");
    settled()->askRestore(state().entries.front().id);
    settled()->confirmRestore();

    EXPECT_FALSE(state().driftRequest);
    EXPECT_EQ(state().undoProof->words,
              "Hide the Dock automatically is back to Off: 1 of 1 key is exactly as before. Hide the Dock "
              "automatically was already back as it was.");
}

TEST_F(AppModelTest, UndoSinceRestoresThatChangeAndLaterOnesOnly) {
    open();
    apply({"dock.autohide", "finder.show_hidden", "shot.jpg"});
    settled()->askUndoSince(state().entries[1].id);
    EXPECT_EQ(state().restoreRequest.value().title, "Restore everything since “Show hidden files”?");
    settled()->confirmRestore();
    EXPECT_EQ(model->changedTweaks(), Texts{"dock.autohide"});
}

TEST_F(AppModelTest, UndoingGoesBackThroughReplacedChoicesAlsoWhereOthersInterfered) {
    const auto before = preferences();
    open();
    settled()->applyChoice("dock.size", "large");
    settled()->applyChoice("dock.size", "small");

    writeFromOutside(tileSize, 50);
    settled()->undoLast();
    EXPECT_EQ(stored(tileSize), StoredValue(50)) << "nothing of others is overwritten unasked";
    EXPECT_EQ(state().driftRequest.value().title(), "This setting was changed outside Brell");
    settled()->confirmDrift(asked(*state().driftRequest));
    EXPECT_EQ(stored(tileSize), StoredValue(64)) << "the undo went on to what the last action had replaced";
    EXPECT_EQ(state().undo.size(), 1u);
    settled()->undoLast();
    EXPECT_EQ(preferences(), before);

    // macOS's own value over a choice that others changed since; then back to what was there at first.
    settled()->applyChoice("dock.size", "large");
    writeFromOutside(tileSize, 50);
    settled()->useSystemDefault("dock.size");
    EXPECT_TRUE(state().driftRequest.value().pendingAfterDrift);
    settled()->confirmDrift(asked(*state().driftRequest));
    EXPECT_EQ(stored(tileSize), StoredValue::absent());
    EXPECT_FALSE(state().driftRequest);
    settled()->undoLast();
    EXPECT_EQ(preferences(), before);
}

TEST_F(AppModelTest, UndoingAPresetOrARestoreDoesWhatItCanAndApplyAgainLeadsToTheOriginals) {
    const auto before = preferences();
    open();
    apply({"dock.autohide", "finder.show_hidden"});
    restoreAll();
    apply({"dock.autohide"});
    settled()->turnOff("dock.autohide");
    settled()->undoLast();  // on again
    settled()->undoLast();  // the first turning on: off again
    settled()->undoLast();  // the restoring of both
    EXPECT_EQ(error(), "");
    EXPECT_EQ(model->changedTweaks(), (Texts{"finder.show_hidden", "dock.autohide"}));

    writeFromOutside(autohide, false);
    settled()->refreshAll();
    ASSERT_EQ(state().drifted.size(), 1u);
    settled()->applyAgain({state().drifted.front().entry.id});
    EXPECT_EQ(stored(autohide), StoredValue(true));
    settled()->undoLast();
    settled()->turnOff("finder.show_hidden");
    EXPECT_EQ(preferences(), before);
}

}  // namespace brell::testing
