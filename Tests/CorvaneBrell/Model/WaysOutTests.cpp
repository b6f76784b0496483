// The ways out: of a journal that is damaged, and of Brell.
#include "BrellCore/Journal/Journal.h"
#include "CorvaneBrell/Model/SheetRequest.h"
#include "CorvaneBrell/Model/TweakRowState.h"
#include "Tests/CorvaneBrell/Model/AppModelFixture.h"

namespace fs = std::filesystem;

using namespace brell;
using namespace brell::testing;

namespace {

const PrefKey autohide{"com.apple.dock", "autohide"};

class WaysOutTest : public AppModelTest {
protected:
    const fs::path journalFolder = Journal::defaultDirectory(sample.home());
};

TEST_F(WaysOutTest, ADamagedJournalIsRebuiltFromItsHistoryAndUndoesEverythingThen) {
    const fs::path journal = journalFolder / "journal.json";
    const auto before = preferences();
    for (const char* id : {"dock.autohide", "finder.show_hidden", "finder.path_bar"})
        settled(*openModel())->apply(id);
    settled(*openModel())->turnOff("finder.path_bar");
    writeFromOutside(autohide, false);
    const std::string whole = contentsOf(journal);
    setContents(journal, "damaged");

    auto model = openModel();
    ASSERT_TRUE(model->state().isJournalDamaged);
    settled(*model)->askRebuild();
    ASSERT_TRUE(model->state().rebuildRequest);
    const RebuildRequest& request = *model->state().rebuildRequest;
    EXPECT_TRUE(request.facts.at(0).starts_with("The history tells of 3 changes from "));
    EXPECT_TRUE(request.facts.at(0).ends_with(". Of these 2 are still active."));
    EXPECT_EQ(request.facts.size(), 2u);
    using Change = RebuildRequest::Change;
    EXPECT_EQ(request.active,
              (std::vector<Change>{
                  {model->catalog().tweak("dock.autohide")->title, "It is as it was before Brell."},
                  {model->catalog().tweak("finder.show_hidden")->title, "It holds what Brell wrote."}}));
    model->cancelRebuild();
    EXPECT_FALSE(model->state().rebuildRequest);
    EXPECT_EQ(contentsOf(journal), "damaged");

    settled(*model)->askRebuild();
    settled(*model)->confirmRebuild();
    ASSERT_TRUE(model->state().rebuildReport);
    EXPECT_FALSE(model->state().isJournalDamaged);
    EXPECT_TRUE(model->state().startupError) << "the rebuilt one is for the next run";
    EXPECT_EQ(contentsOf(journal), whole);

    model = openModel();
    EXPECT_FALSE(model->state().startupError);
    settled(*model)->askRestoreAll();
    settled(*model)->confirmRestore();
    EXPECT_EQ(preferences(), before);

    // Without a history nothing is offered but a sentence; another one than that which was shown is refused.
    setContents(journal, "damaged");
    model = openModel();
    settled(*model)->askRebuild();
    fs::remove_all(journal.parent_path() / "history");
    settled(*model)->confirmRebuild();
    EXPECT_TRUE(model->state().errorMessage);
    model->dismissError();
    settled(*model)->askRebuild();
    EXPECT_FALSE(model->state().rebuildRequest);
    ASSERT_TRUE(model->state().errorMessage);
    EXPECT_TRUE(model->state().errorMessage->starts_with("There is no history"));
    EXPECT_EQ(contentsOf(journal), "damaged");
}

TEST_F(WaysOutTest, LeavingPutsEverythingBackProvesItAndTakesBrellsOwnFilesAwayLast) {
    const fs::path trash = folder.path / "trash";
    const TakeAway toTrash = [&](const fs::path& taken) { fs::rename(taken, trash); };
    const auto before = preferences();
    auto model = openModel();
    for (const char* id : {"dock.autohide", "dock.magnify", "shot.jpg"}) settled(*model)->apply(id);
    writeFromOutside(autohide, "no");
    const auto request = [&] { return model->state().leavingRequest.value(); };

    settled(*model)->askLeaving();
    EXPECT_EQ(request().active.front(),
              (LeavingRequest::Change{"Save screenshots as JPEG", "On, back to \"png\""}));
    EXPECT_EQ(request().active.size(), 3u);
    EXPECT_FALSE(request().mayGoToTrash());
    settled(*model)->confirmLeaving(toTrash);
    EXPECT_TRUE(model->state().leavingRequest) << "as long as something is active";

    // All but one that others changed since, which is left as it is.
    settled(*model)->askRestoreAll();
    settled(*model)->confirmRestore({});
    EXPECT_EQ(request().active.size(), 1u);
    EXPECT_FALSE(request().mayGoToTrash());
    settled(*model)->askRestoreAll();
    const auto drifted = model->state().restoreRequest.value().changes.entries;
    ASSERT_EQ(drifted.size(), 1u);
    settled(*model)->confirmRestore({drifted.front().entry.id});
    EXPECT_EQ(preferences(), before);
    EXPECT_EQ(request().proof, (UndoProof{"3 changes are back: 4 of 4 keys are exactly as before.", true}));
    ASSERT_EQ(request().keys.size(), 4u);
    EXPECT_EQ(request().keys.front(), "com.apple.screencapture type: \"png\", as before");
    EXPECT_TRUE(request().isProved() && request().mayGoToTrash());

    const auto kept = everythingIn(journalFolder);
    settled(*model)->confirmLeaving([](const fs::path&) { throw std::runtime_error("it is full"); });
    EXPECT_TRUE(
        model->state().errorMessage->ends_with(journalFolder.string() + ": it is full. Nothing was lost."));
    EXPECT_EQ(everythingIn(journalFolder), kept);
    EXPECT_FALSE(isLocked(model->state()));

    model->keepMacOS();
    settled(*model)->askLeaving();
    model->confirmLeaving(toTrash);
    EXPECT_TRUE(isLocked(model->state()));
    model->apply("dock.magnify");  // between the button and the Trash
    settle(*model);
    EXPECT_EQ(preferences(), before);
    ASSERT_TRUE(std::holds_alternative<LeavingReport>(sheetRequest(model->state(), {}).value()));
    EXPECT_TRUE(isLocked(model->state()));
    EXPECT_TRUE(fs::exists(trash / "journal.json"));
    EXPECT_EQ(PlistFileStore(sample.preferences(), OwnPreferences::domains()).snapshot().size(), 0u);

    // Whatever is asked for until the window is closed, nothing is made anew.
    const auto left = everythingIn(folder.path);
    settled(*model)->apply("dock.autohide");
    settled(*model)->askLeaving();
    settled(*model)->refreshShown();
    model->markReviewed("camera");
    model->ownPreferences().keepWindowPlace({900, 700, Screen::dock});
    model->keepMacOS();
    model.reset();
    EXPECT_EQ(everythingIn(folder.path), left);
}

TEST_F(WaysOutTest, AJournalOfAnotherMacIsToldOfBeforeTheFirstRestore) {
    settled(*openModel())->apply("dock.autohide");
    const fs::path journal = journalFolder / "journal.json";
    const auto model = openModel();
    const Tweak& tweak = *model->catalog().tweak("dock.autohide");
    EXPECT_EQ(tweakRowState(*model, tweak).reason, "");
    std::string text = contentsOf(journal);
    const std::string version = "\"" + model->macOSVersion() + "\"";
    setContents(journal, text.replace(text.find(version), version.size(), "\"99.1.0\""));
    settled(*model)->refreshAll();
    const std::string words = "It was made on macOS 99.1.0, which is newer than this Mac's " +
                              model->macOSVersion() + ". It may have come from another Mac or account.";
    EXPECT_EQ(tweakRowState(*model, tweak).reason, words);
    settled(*model)->askRestoreAll();
    EXPECT_EQ(model->state().restoreRequest.value().steps.at(0).words, "Now On, back to Off\n" + words);
}

TEST_F(WaysOutTest, WithoutAJournalOrInADryRunThereIsNothingToLeave) {
    settled(*openModel())->apply("dock.autohide");
    options.dryRun = true;
    auto model = openModel();
    settled(*model)->askLeaving();
    EXPECT_EQ(*model->state().errorMessage, "There is nothing to leave. " + *model->whyNothingReal());
    options.dryRun = false;
    setContents(journalFolder / "journal.json", "damaged");
    model = openModel();
    settled(*model)->askLeaving();
    EXPECT_EQ(*model->state().errorMessage,
              "Without its journal Brell can't tell what is still changed, so it can't be left now. " +
                  *model->state().startupError);
    EXPECT_FALSE(model->state().leavingRequest);
}

}  // namespace
