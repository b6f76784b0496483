// The ways back through the model: restoring, undoing, and the questions before what others changed.

#include <gtest/gtest.h>

#include "CorvaneBrell/Dependencies.h"
#include "CorvaneBrell/Model/TweakRowState.h"
#include "Tests/CorvaneBrell/Model/AppModelFixture.h"
#include "Tests/Support/EngineFixture.h"

namespace brell {

using namespace testing;

namespace {

const PrefKey autohide{"com.apple.dock", "autohide"};
const PrefKey pathBar{"com.apple.finder", "ShowPathbar"};

}  // namespace

TEST_F(AppModelTest, RestoreAllShowsEveryKeyAndRestoresWhatWasTickedAndWhatDidNotDrift) {
    const auto before = preferences();
    const auto model = openModel();
    for (const char* id : {"dock.autohide", "finder.show_hidden", "finder.path_bar", "shot.jpg"})
        settled(*model)->apply(id);
    writeFromOutside(autohide, "no");
    writeFromOutside(pathBar, false);
    settled(*model)->turnOff("dock.autohide");
    EXPECT_EQ(model->state().driftRequest.value().entries.at(0).lines,
              Texts{"com.apple.dock autohide: now \"no\"; Brell wrote true; original false"});
    model->cancelDrift();

    settled(*model)->askRestoreAll();
    ASSERT_TRUE(model->state().restoreRequest);
    const RestoreRequest asked = *model->state().restoreRequest;
    EXPECT_EQ(asked.steps.size(), 2u);
    EXPECT_EQ(asked.steps.front(), (RestoreStep{"Save screenshots as JPEG",
                                                "Now On, back to \"png\"",
                                                {"com.apple.screencapture type: back to \"png\""},
                                                false}));
    EXPECT_EQ(asked.changes.title(), "Some settings were changed outside Brell");
    ASSERT_EQ(asked.changes.entries.size(), 2u);
    const DriftedEntry& drifted = asked.changes.entries.back();
    EXPECT_EQ(drifted.entry.tweakID, "dock.autohide");
    EXPECT_EQ(drifted.words, "Now \"no\", back to Off");
    const Uuid ticked = drifted.entry.id;

    // While the sheet is open others change what it shows: nothing is overwritten that it did not show.
    writeFromOutside(autohide, "never");
    settled(*model)->confirmRestore({ticked});
    ASSERT_TRUE(model->state().driftRequest);
    EXPECT_EQ(model->state().driftRequest->others.size(), 2u) << "nothing was restored";
    writeFromOutside({"com.apple.screencapture", "type"}, "tiff");
    settled(*model)->confirmDrift({ticked});
    ASSERT_TRUE(model->state().driftRequest);
    ASSERT_EQ(model->state().driftRequest->entries.size(), 1u);
    settled(*model)->confirmDrift({model->state().driftRequest->entries.front().entry.id});

    auto expected = before;
    expected["com.apple.finder"].insert_or_assign("ShowPathbar", PrefValue(false));
    EXPECT_EQ(preferences(), expected);
    EXPECT_EQ(model->changedTweaks(), Texts{"finder.path_bar"});
}

TEST_F(AppModelTest, AnEntryThatIsAlreadyBackClosesWithoutAsking) {
    const auto model = openModel();
    settled(*model)->apply("dock.autohide");
    writeFromOutside(autohide, false);  // what it was before
    settled(*model)->refreshAll();
    settle(*model);
    EXPECT_EQ(tweakRowState(*model, *model->catalog().tweak("dock.autohide")).badge->text, "Not in force");
    settled(*model)->askRestore(model->state().entries.front().id);
    settled(*model)->confirmRestore();

    EXPECT_FALSE(model->state().driftRequest);
    EXPECT_EQ(model->state().entries.front().status, EntryStatus::restored);
    EXPECT_EQ(model->state().undoProof->words,
              "Hide the Dock automatically is back to Off: 1 of 1 key is exactly as before. Hide the Dock "
              "automatically "
              "was already back as it was.");
}

TEST_F(AppModelTest, UndoSinceRestoresThatChangeAndLaterOnesOnly) {
    const auto model = openModel();
    for (const char* id : {"dock.autohide", "finder.show_hidden", "shot.jpg"}) settled(*model)->apply(id);
    settled(*model)->askUndoSince(model->state().entries[1].id);
    ASSERT_TRUE(model->state().restoreRequest);
    EXPECT_EQ(model->state().restoreRequest->title, "Restore everything since “Show hidden files”?");
    settled(*model)->confirmRestore();
    EXPECT_EQ(model->changedTweaks(), Texts{"dock.autohide"});
}

TEST_F(AppModelTest, UndoingGoesBackThroughReplacedChoicesAlsoWhereOthersInterfered) {
    const auto before = preferences();
    const auto sizeNow = [&] { return sample.openPreferences()->exactValue(tileSize); };
    const auto model = openModel();
    const auto confirmAllDrift = [&] {
        ASSERT_TRUE(model->state().driftRequest);
        std::set<Uuid> all;
        for (const DriftedEntry& drifted : model->state().driftRequest->entries) all.insert(drifted.entry.id);
        settled(*model)->confirmDrift(all);
    };
    settled(*model)->applyChoice("dock.size", "large");
    settled(*model)->applyChoice("dock.size", "small");

    writeFromOutside(tileSize, 50);
    settled(*model)->undoLast();
    EXPECT_EQ(sizeNow(), StoredValue(50)) << "nothing of others is overwritten unasked";
    EXPECT_EQ(model->state().driftRequest.value().title(), "This setting was changed outside Brell");
    ASSERT_NO_FATAL_FAILURE(confirmAllDrift());
    EXPECT_EQ(sizeNow(), StoredValue(64)) << "the undo went on to what the last action had replaced";
    EXPECT_EQ(model->state().undo.size(), 1u);

    settled(*model)->undoLast();
    EXPECT_EQ(preferences(), before);
    EXPECT_TRUE(model->state().undo.next() == nullptr);

    // macOS's own value over a choice that others changed since; then back to what was there at first.
    settled(*model)->applyChoice("dock.size", "large");
    writeFromOutside(tileSize, 50);
    settled(*model)->useSystemDefault("dock.size");
    EXPECT_TRUE(model->state().driftRequest->pendingAfterDrift);
    EXPECT_EQ(sizeNow(), StoredValue(50));
    ASSERT_NO_FATAL_FAILURE(confirmAllDrift());
    EXPECT_EQ(sizeNow(), StoredValue::absent());
    EXPECT_FALSE(model->state().driftRequest);
    settled(*model)->undoLast();
    EXPECT_EQ(preferences(), before);
}

TEST_F(AppModelTest, UndoingAPresetOrARestoreDoesWhatItCanAndApplyAgainLeadsToTheOriginals) {
    const auto before = preferences();
    const auto model = openModel();
    model->apply("dock.autohide");
    settled(*model)->apply("finder.show_hidden");
    settled(*model)->askRestoreAll();
    settled(*model)->confirmRestore();
    settled(*model)->apply("dock.autohide");
    settled(*model)->turnOff("dock.autohide");
    settled(*model)->undoLast();  // on again
    settled(*model)->undoLast();  // the first turning on: off again
    settled(*model)->undoLast();  // the restoring of both
    EXPECT_FALSE(model->state().errorMessage) << *model->state().errorMessage;
    EXPECT_EQ(model->changedTweaks(), (Texts{"finder.show_hidden", "dock.autohide"}));

    writeFromOutside({"com.apple.dock", "autohide"}, false);
    settled(*model)->refreshAll();
    ASSERT_EQ(model->state().drifted.size(), 1u);
    settled(*model)->applyAgain({model->state().drifted.front().entry.id});
    EXPECT_EQ(sample.openPreferences()->exactValue({"com.apple.dock", "autohide"}), StoredValue(true));
    settled(*model)->undoLast();
    EXPECT_EQ(model->changedTweaks(), Texts{"finder.show_hidden"});
    settled(*model)->turnOff("finder.show_hidden");
    EXPECT_EQ(preferences(), before);
}

TEST_F(AppModelTest, AnUndoDuringAChangeDoesNothing) {
    const auto model = openModel();
    settled(*model)->apply("finder.show_hidden");
    model->apply("dock.autohide");
    model->undoLast();  // nobody can say yet of what
    settle(*model);
    EXPECT_EQ(model->state().undo.size(), 2u);
}

}  // namespace brell
