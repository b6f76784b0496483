// Whole stories, driven as a user would and judged by the files.

#include <gtest/gtest.h>

#include "CorvaneBrell/Dependencies.h"
#include "Tests/CorvaneBrell/Model/AppModelFixture.h"
#include "Tests/Support/EngineFixture.h"

namespace brell {

namespace fs = std::filesystem;
using namespace testing;

namespace {

const PrefKey autohide{"com.apple.dock", "autohide"};

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

TEST_F(AppModelTest, ARefreshThatCannotReadTheJournalSaysSoAndKeepsWhatWasShown) {
    const auto model = openModel();
    settled(*model)->apply("dock.autohide");
    setContents(model->journalDirectory() / "journal.json", "damaged");
    settled(*model)->refreshAll();
    EXPECT_TRUE(model->state().journalError.value_or("").starts_with("The change journal could not be read"));
    EXPECT_EQ(model->changedTweaks(), Texts{"dock.autohide"});
}

TEST_F(AppModelTest, AScriptThatCannotBeWrittenIsToldOnce) {
    const auto model = openModel();
    fs::create_directories(model->journalDirectory() / "restore.sh");  // in the way
    settled(*model)->apply("dock.autohide");
    EXPECT_TRUE(model->state().errorMessage.value_or("").starts_with("The restore script "));
    model->dismissError();
    settled(*model)->apply("finder.show_hidden");
    EXPECT_FALSE(model->state().errorMessage);
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

}  // namespace brell
