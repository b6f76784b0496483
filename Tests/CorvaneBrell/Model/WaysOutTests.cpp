// The ways out: of a journal that is damaged, and of Brell.

#include "BrellCore/Journal/Journal.h"
#include "CorvaneBrell/Model/SheetRequest.h"
#include "CorvaneBrell/Model/TweakRowState.h"
#include "Tests/CorvaneBrell/Model/AppModelFixture.h"

namespace fs = std::filesystem;

namespace brell::testing {

namespace {

class WaysOutTest : public AppModelTest {
protected:
    const fs::path journalFolder = Journal::defaultDirectory(sample.home());
    const fs::path journal = journalFolder / "journal.json";
};

}  // namespace

TEST_F(WaysOutTest, ADamagedJournalIsRebuiltFromItsHistoryAndUndoesEverythingThen) {
    const auto before = preferences();
    open();
    apply({"dock.autohide", "finder.show_hidden", "finder.path_bar"});
    settled()->turnOff("finder.path_bar");
    writeFromOutside(autohide, false);
    const std::string whole = contentsOf(journal);
    setContents(journal, "damaged");

    ASSERT_TRUE(open().state().isJournalDamaged);
    settled()->askRebuild();
    const RebuildRequest request = state().rebuildRequest.value();
    EXPECT_TRUE(request.facts.at(0).starts_with("The history tells of 3 changes from "));
    EXPECT_TRUE(request.facts.at(0).ends_with(". Of these 2 are still active."));
    EXPECT_EQ(request.facts.size(), 3u);
    EXPECT_EQ(request.facts.back(), "Brell uses the rebuilt journal when it is opened again.");
    using Change = RebuildRequest::Change;
    EXPECT_EQ(request.active,
              (std::vector<Change>{{"Hide the Dock automatically", "It is as it was before Brell."},
                                   {"Show hidden files", "It holds what Brell wrote."}}));
    settled()->confirmRebuild();
    ASSERT_TRUE(state().rebuildReport);
    EXPECT_FALSE(state().isJournalDamaged);
    EXPECT_TRUE(state().startupError) << "the rebuilt one is for the next run";
    EXPECT_EQ(contentsOf(journal), whole);

    EXPECT_FALSE(open().state().startupError);
    restoreAll();
    EXPECT_EQ(preferences(), before);

    // Without a history nothing is offered but a sentence; another one than that which was shown is refused.
    setContents(journal, "damaged");
    open();
    settled()->askRebuild();
    fs::remove_all(journalFolder / "history");
    settled()->confirmRebuild();
    EXPECT_NE(error(), "");
    settled()->askRebuild();
    EXPECT_FALSE(state().rebuildRequest);
    EXPECT_TRUE(error().starts_with("There is no history"));
    EXPECT_EQ(contentsOf(journal), "damaged");
}

TEST_F(WaysOutTest, LeavingPutsEverythingBackProvesItAndTakesBrellsOwnFilesAwayLast) {
    const fs::path trash = folder.path / "trash";
    const TakeAway toTrash = [&](const fs::path& taken) { fs::rename(taken, trash); };
    const auto request = [&] { return state().leavingRequest.value(); };
    const auto before = preferences();
    open();
    apply({"dock.autohide", "dock.magnify", "shot.jpg"});
    writeFromOutside(autohide, "no");

    settled()->askLeaving();
    EXPECT_EQ(request().active.front(),
              (LeavingRequest::Change{"Save screenshots as JPEG", "On, back to \"png\""}));
    EXPECT_EQ(request().active.size(), 3u);
    settled()->confirmLeaving(toTrash);
    EXPECT_FALSE(request().mayGoToTrash()) << "as long as something is active";

    // All but one that others changed since, which is left as it is.
    restoreAll();
    EXPECT_EQ(request().active.size(), 1u);
    EXPECT_FALSE(request().mayGoToTrash());
    restoreAll({state().drifted.at(0).entry.id});
    EXPECT_EQ(preferences(), before);
    EXPECT_EQ(request().proof, (UndoProof{"3 changes are back: 4 of 4 keys are exactly as before.", true}));
    ASSERT_EQ(request().keys.size(), 4u);
    EXPECT_EQ(request().keys.front(), "com.apple.screencapture type: \"png\", as before");
    EXPECT_TRUE(request().isProved() && request().mayGoToTrash());

    const auto kept = everythingIn(journalFolder);
    settled()->confirmLeaving([](const fs::path&) { throw std::runtime_error("it is full"); });
    EXPECT_TRUE(error().ends_with(journalFolder.string() + ": it is full. Nothing was lost."));
    EXPECT_EQ(everythingIn(journalFolder), kept);
    EXPECT_FALSE(isLocked(state()));

    model->keepMacOS();
    settled()->askLeaving();
    model->confirmLeaving(toTrash);
    EXPECT_TRUE(isLocked(state()));
    apply({"dock.magnify"});  // between the button and the Trash
    EXPECT_EQ(preferences(), before);
    EXPECT_TRUE(std::holds_alternative<LeavingReport>(sheetRequest(state(), {}).value()));
    EXPECT_TRUE(isLocked(state()));
    EXPECT_TRUE(fs::exists(trash / "journal.json"));
    EXPECT_EQ(PlistFileStore(sample.preferences(), OwnPreferences::domains()).snapshot().size(), 0u);

    // Nothing is made anew, however much is asked for until the window is closed.
    const auto left = everythingIn(folder.path);
    apply({"dock.autohide"});
    settled()->askLeaving();
    settled()->refreshShown();
    model->markReviewed("camera");
    model->ownPreferences().keepWindowPlace({900, 700, Screen::dock});
    model->keepMacOS();
    model.reset();
    EXPECT_EQ(everythingIn(folder.path), left);
}

TEST_F(WaysOutTest, AJournalOfAnotherMacIsToldOfBeforeTheFirstRestore) {
    open();
    apply({"dock.autohide"});
    const auto reason = [&] {
        return tweakRowState(*model, *model->catalog().tweak("dock.autohide")).reason;
    };
    EXPECT_EQ(reason(), "");
    std::string text = contentsOf(journal);
    setContents(journal, text.replace(text.find("\"26.1.0\""), 8, "\"99.1.0\""));
    settled()->refreshAll();
    const std::string words =
        "It was made on macOS 99.1.0, which is newer than this Mac's 26.1.0. It may have come from another "
        "Mac or account.";
    EXPECT_EQ(reason(), words);
    settled()->askRestoreAll();
    EXPECT_EQ(state().restoreRequest.value().steps.at(0).words, "Now On, back to Off\n" + words);
}

TEST_F(WaysOutTest, WithoutAJournalOrInADryRunThereIsNothingToLeave) {
    open();
    apply({"dock.autohide"});
    options.dryRun = true;
    open();
    settled()->askLeaving();
    EXPECT_EQ(error(), "There is nothing to leave. " + *model->whyNothingReal());
    options.dryRun = false;
    setContents(journal, "damaged");
    open();
    settled()->askLeaving();
    EXPECT_EQ(error(),
              "Without its journal Brell can't tell what is still changed, so it can't be left now. " +
                  *state().startupError);
    EXPECT_FALSE(state().leavingRequest);
}

}  // namespace brell::testing
