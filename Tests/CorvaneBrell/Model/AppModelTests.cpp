// Whole stories, driven as a user would and judged by the files.

#include <gtest/gtest.h>

#include <chrono>

#include "CorvaneBrell/Dependencies.h"
#include "CorvaneBrell/Model/TweakRowState.h"
#include "Tests/CorvaneBrell/Model/AppModelFixture.h"
#include "Tests/Support/EngineFixture.h"

namespace brell {

namespace fs = std::filesystem;
using namespace testing;

namespace {

const PrefKey autohide{"com.apple.dock", "autohide"};
const PrefKey pathBar{"com.apple.finder", "ShowPathbar"};

}  // namespace

TEST_F(AppModelTest, FirstLaunchShowsEveryTweakAndWritesNothing) {
    const auto before = preferences();
    const auto model = openModel();

    EXPECT_EQ(model->state().statuses.size(), 50u);
    EXPECT_FALSE(model->whyNothingReal());
    EXPECT_EQ(preferences(), before);
    EXPECT_FALSE(fs::exists(model->journalDirectory()));
}

TEST_F(AppModelTest, ApplyTurnOffAndUndoAreAnnouncedOnceAndLeaveThePreferencesAsTheyWere) {
    const auto before = preferences();
    const auto model = openModel();
    announced.clear();

    model->apply("dock.autohide");
    EXPECT_TRUE(model->state().changeActivity);
    EXPECT_TRUE(std::holds_alternative<Off>(status(*model, "dock.autohide").state))
        << "the change runs beside";
    settle(*model);

    EXPECT_TRUE(std::holds_alternative<OnByBrell>(status(*model, "dock.autohide").state));
    EXPECT_EQ(waiting(*model), std::set{EffectClass::dockRelaunch});
    EXPECT_EQ(model->changedTweaks(), Texts{"dock.autohide"});
    EXPECT_EQ(model->changedCount(Screen::dock), 1u);
    EXPECT_EQ(model->changedCount(Screen::finder), 0u);
    EXPECT_EQ(announced, (std::map<Topic, int>{{Topic::settings, 1},
                                               {Topic::journal, 2},  // the undo, the entries
                                               {Topic::history, 1},
                                               {Topic::notices, 1},     // the relaunch
                                               {Topic::activity, 5}}))  // change and look, begun and ended
        << "each once";
    ASSERT_EQ(model->state().undo.size(), 1u);
    EXPECT_EQ(model->state().undo.next()->name, "Hide the Dock automatically");

    settled(*model)->undoLast();
    EXPECT_EQ(preferences(), before);
    EXPECT_EQ(
        model->state().undoProof,
        (UndoProof{"Hide the Dock automatically is back to Off: 1 of 1 key is exactly as before.", true}));
    EXPECT_TRUE(model->state().undo.next() == nullptr);
    EXPECT_TRUE(waiting(*model).empty()) << "undone before the relaunch: nothing to relaunch for";

    settled(*model)->apply("dock.autohide");
    settled(*model)->turnOff("dock.autohide");
    EXPECT_EQ(preferences(), before);
    settled(*model)->undoLast();  // of the turning off
    EXPECT_EQ(sample.openPreferences()->exactValue(autohide), StoredValue(true));
}

TEST_F(AppModelTest, AnotherChoiceReplacesTheFirstOneAndKeepsTheOriginal) {
    const auto model = openModel();
    settled(*model)->applyChoice("dock.size", "large");
    settled(*model)->applyChoice("dock.size", "small");

    EXPECT_EQ(sample.openPreferences()->exactValue(tileSize), StoredValue(36));
    EXPECT_EQ(status(*model, "dock.size").currentChoiceID, "small");
    ASSERT_EQ(model->state().entries.size(), 2u);
    EXPECT_EQ(model->state().entries.front().writes.front().original, StoredValue(41));

    EXPECT_FALSE(model->state().undoProof) << "the key holds a new value, not the old one";

    settled(*model)->apply("dock.size", std::vector<PrefValue>{"big"});  // refused by the engine
    EXPECT_EQ(model->state().errorMessage, "dock.size: tilesize takes a int, not a string.");
    EXPECT_EQ(sample.openPreferences()->exactValue(tileSize), StoredValue(36))
        << "the user keeps what was there";
    EXPECT_TRUE(std::holds_alternative<OnByBrell>(status(*model, "dock.size").state));
    EXPECT_EQ(model->state().undo.size(), 2u) << "there is nothing more to undo";

    model->applyChoice("dock.size", "enormous");
    EXPECT_EQ(model->state().errorMessage, "Icon size has no choice enormous.");
    model->dismissError();
    EXPECT_FALSE(model->state().errorMessage);
}

TEST_F(AppModelTest, ASecondClickWhileTheFirstIsUnderWayChangesNothingMore) {
    const auto model = openModel();
    settled(*model)->applyChoice("dock.size", "large");
    model->turnOff("dock.size");
    settled(*model)->turnOff("dock.size");  // a second click while the first is under way
    EXPECT_EQ(sample.openPreferences()->exactValue(tileSize), StoredValue(41));
    EXPECT_FALSE(model->state().errorMessage);

    settled(*model)->apply("finder.show_extensions");  // set before Brell
    settled(*model)->askRestore(model->state().entries.front().id);
    settled(*model)->confirmRestore();
    model->turnOff("finder.show_extensions");
    settled(*model)->turnOff("finder.show_extensions");
    EXPECT_TRUE(std::holds_alternative<OffByBrell>(status(*model, "finder.show_extensions").state));
}

TEST_F(AppModelTest, AnUndoDuringAChangeDoesNothing) {
    const auto model = openModel();
    settled(*model)->apply("finder.show_hidden");
    model->apply("dock.autohide");
    model->undoLast();  // nobody can say yet of what
    settle(*model);
    EXPECT_EQ(model->state().undo.size(), 2u);
}

TEST_F(AppModelTest, ARefreshThatCannotReadTheJournalSaysSoAndKeepsWhatWasShown) {
    const auto model = openModel();
    settled(*model)->apply("dock.autohide");
    setContents(model->journalDirectory() / "journal.json", "damaged");
    settled(*model)->refreshAll();
    EXPECT_TRUE(model->state().journalError.value_or("").starts_with("The change journal could not be read"));
    EXPECT_EQ(model->changedTweaks(), Texts{"dock.autohide"});
}

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

TEST_F(AppModelTest, AScriptThatCannotBeWrittenIsToldOnce) {
    const auto model = openModel();
    fs::create_directories(Journal::defaultDirectory(sample.home()) / "restore.sh");  // in the way
    const fs::path own = sample.preferences() / "com.corvane.brell.plist";
    fs::create_directories(own / "in the way of what waits for a relaunch");
    settled(*model)->apply("dock.autohide");
    const std::string error = model->state().errorMessage.value_or("");
    EXPECT_TRUE(error.starts_with("The restore script ")) << "the first error is not lost: " << error;
    EXPECT_NE(error.find("com.corvane.brell"), std::string::npos) << error;
    fs::remove_all(own);
    model->dismissError();
    settled(*model)->apply("finder.show_hidden");
    EXPECT_FALSE(model->state().errorMessage);
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

TEST_F(AppModelTest, AnInterruptedChangeIsFoundDeferredAndRecovered) {
    const auto before = preferences();
    {
        std::ostringstream ignored;
        Dependencies crashed(options, ignored);
        breakOff(crashed.engine, *crashed.catalog.tweak("dock.autohide_instant"));
    }
    writeFromOutside({"com.apple.dock", "autohide-delay"}, 0.0);  // the first of its two writes had been made

    auto model = [&] {
        const auto other = Journal::open(openModel()->journalDirectory());
        const auto held = other->exclusive();
        auto opened = openModel();
        EXPECT_TRUE(opened->state().interrupted.empty()) << "another run is just making it";
        return opened;
    }();
    settled(*model)->refreshAll();
    ASSERT_EQ(model->state().interrupted.size(), 1u);
    model->deferRecovery();
    EXPECT_TRUE(model->state().recoveryDeferred);
    EXPECT_EQ(model->state().interrupted.size(), 1u);

    model = openModel();  // the next launch asks again
    EXPECT_FALSE(model->state().recoveryDeferred);
    std::size_t shownAfterwards = 0;  // before everything was read again
    model->setObserver([&](Topic) {
        if (!model->state().changeActivity) shownAfterwards += model->state().interrupted.size();
    });
    settled(*model)->recover();
    EXPECT_EQ(shownAfterwards, 0u) << "what was put back is not asked for once more";
    EXPECT_TRUE(model->state().interrupted.empty());
    EXPECT_TRUE(model->state().recoveryFailures.empty());
    EXPECT_EQ(preferences(), before);
}

TEST_F(AppModelTest, ADamagedJournalIsRebuiltFromItsHistoryAndUndoesEverythingThen) {
    const fs::path journal = Journal::defaultDirectory(sample.home()) / "journal.json";
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

TEST_F(AppModelTest, AnUnreadableJournalLeavesADryRunThatSaysSo) {
    const fs::path journal = Journal::defaultDirectory(sample.home()) / "journal.json";
    setContents(journal, R"({"format": 2, "changes": {}})");
    const auto whole = testing::everythingIn(folder.path);
    const auto model = openModel();

    EXPECT_EQ(model->state().startupError,
              "The change journal could not be opened: The change journal could not be read: the journal was "
              "written "
              "by a newer Brell (format 2); update Brell before changing anything. Nothing can be changed "
              "until this "
              "is fixed.");
    EXPECT_FALSE(model->state().isJournalDamaged);
    EXPECT_TRUE(model->options().dryRun);
    EXPECT_EQ(model->whyNothingReal(), model->state().startupError);
    settled(*model)->apply("dock.autohide");
    EXPECT_TRUE(std::holds_alternative<OnByBrell>(status(*model, "dock.autohide").state));
    EXPECT_NE(out.str().find("dry-run: would write com.apple.dock autohide = true"), std::string::npos);
    EXPECT_EQ(changesIn(folder.path, whole), Texts());
    fs::remove_all(model->journalDirectory());

    setContents(journal, "damaged");
    const std::string before = fs::temp_directory_path();
    ::setenv("TMPDIR", journal.c_str(), 1);
    const std::string both = messageOf([&] { openModel(); });
    ::setenv("TMPDIR", before.c_str(), 1);
    EXPECT_TRUE(both.starts_with("The change journal could not be read: " + journal.string())) << both;
    EXPECT_NE(both.find(". The folder for temporary files, TMPDIR, could not be used: "), std::string::npos);
}

TEST_F(AppModelTest, TwoModelsOverOneJournalSeeEachOther) {
    const auto one = openModel();
    const auto other = openModel();
    settled(*one)->apply("dock.autohide");
    other->apply("dock.autohide");  // replaces: restored first, then applied anew
    settled(*other)->apply("finder.show_hidden");
    settled(*one)->refreshAll();
    EXPECT_EQ(one->state().entries, other->state().entries);
    EXPECT_EQ(one->changedTweaks(), (Texts{"finder.show_hidden", "dock.autohide"}));
}

TEST_F(AppModelTest, TheModelMayEndWhileWorkIsUnderWay) {
    auto model = openModel();
    model->apply("dock.autohide");
    model->loadLoginItems();
    model->loadVolumes();
    ASSERT_TRUE(loop.waitFor([&] { return !model->state().loginItems.empty(); })) << "in the middle of it";
    model.reset();
    loop.runUntilIdle();  // nothing comes back to what is gone
    EXPECT_EQ(openModel()->state().interrupted.size(), 0u) << "the change was finished, or never begun";
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

}  // namespace brell
