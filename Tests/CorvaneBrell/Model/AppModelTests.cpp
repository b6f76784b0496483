// Whole stories, driven as a user would and judged by the files.

#include "CorvaneBrell/Dependencies.h"
#include "Tests/CorvaneBrell/Model/AppModelFixture.h"
#include "Tests/Support/EngineFixture.h"

namespace fs = std::filesystem;

namespace brell::testing {

TEST_F(AppModelTest, ApplyTurnOffAndUndoAreAnnouncedOnceAndLeaveThePreferencesAsTheyWere) {
    const auto before = preferences();
    open();
    announced.clear();

    model->apply("dock.autohide");
    EXPECT_TRUE(state().changeActivity);
    EXPECT_TRUE(std::holds_alternative<Off>(stateOf("dock.autohide"))) << "the change runs beside";
    settle();

    EXPECT_TRUE(std::holds_alternative<OnByBrell>(stateOf("dock.autohide")));
    EXPECT_EQ(waiting(), std::set{EffectClass::dockRelaunch});
    EXPECT_EQ(model->changedTweaks(), Texts{"dock.autohide"});
    EXPECT_EQ(model->changedCount(Screen::dock), 1u);
    EXPECT_EQ(model->changedCount(Screen::finder), 0u);
    EXPECT_EQ(announced, (std::map<Topic, int>{{Topic::settings, 1},
                                               {Topic::journal, 2},  // the undo, the entries
                                               {Topic::history, 1},
                                               {Topic::notices, 1},     // the relaunch
                                               {Topic::activity, 5}}))  // change and look, begun and ended
        << "each once";
    ASSERT_EQ(state().undo.size(), 1u);
    EXPECT_EQ(state().undo.next()->name, "Hide the Dock automatically");

    settled()->undoLast();
    EXPECT_EQ(preferences(), before);
    EXPECT_EQ(
        state().undoProof,
        (UndoProof{"Hide the Dock automatically is back to Off: 1 of 1 key is exactly as before.", true}));
    EXPECT_EQ(state().undo.size(), 0u);
    EXPECT_TRUE(waiting().empty()) << "undone before the relaunch: nothing to relaunch for";

    apply({"dock.autohide"});
    settled()->turnOff("dock.autohide");
    EXPECT_EQ(preferences(), before);
    settled()->undoLast();  // of the turning off
    EXPECT_EQ(stored(autohide), StoredValue(true));
}

TEST_F(AppModelTest, AChoiceThatIsRefusedLeavesTheOneBefore) {
    open();
    settled()->applyChoice("dock.size", "large");
    settled()->applyChoice("dock.size", "small");
    EXPECT_EQ(state().entries.front().writes.front().original, StoredValue(41));
    EXPECT_FALSE(state().undoProof) << "the key holds a new value, not the old one";

    settled()->apply("dock.size", std::vector<PrefValue>{"big"});  // refused by the engine
    EXPECT_EQ(error(), "dock.size: tilesize takes a int, not a string.");
    EXPECT_EQ(stored(tileSize), StoredValue(36));
    EXPECT_EQ(state().statuses.at("dock.size").currentChoiceID, "small");
    EXPECT_EQ(state().undo.size(), 2u) << "there is nothing more to undo";

    model->applyChoice("dock.size", "enormous");
    EXPECT_EQ(error(), "Icon size has no choice enormous.");
    model->dismissError();
    EXPECT_EQ(error(), "");
}

TEST_F(AppModelTest, ASecondClickWhileTheFirstIsUnderWayChangesNothingMore) {
    open();
    const auto clickTwice = [&](const char* tweakID) {
        model->turnOff(tweakID);
        settled()->turnOff(tweakID);
    };
    settled()->applyChoice("dock.size", "large");
    clickTwice("dock.size");
    EXPECT_EQ(stored(tileSize), StoredValue(41));
    EXPECT_EQ(error(), "");

    clickTwice("finder.show_extensions");  // set before Brell
    EXPECT_TRUE(std::holds_alternative<OffByBrell>(stateOf("finder.show_extensions")));

    apply({"finder.show_hidden"});
    model->apply("dock.autohide");
    settled()->undoLast();  // nobody can say yet of what
    EXPECT_EQ(model->changedTweaks(),
              (Texts{"finder.show_hidden", "finder.show_extensions", "dock.autohide"}));
}

TEST_F(AppModelTest, AScriptThatCannotBeWrittenIsToldOnce) {
    open();
    fs::create_directories(model->journalDirectory() / "restore.sh");  // in the way
    apply({"dock.autohide"});
    EXPECT_TRUE(error().starts_with("The restore script "));
    model->dismissError();
    apply({"finder.show_hidden"});
    EXPECT_EQ(error(), "");
}

TEST_F(AppModelTest, AnInterruptedChangeIsFoundDeferredAndRecovered) {
    const auto before = preferences();
    {
        Dependencies crashed(options, out);
        breakOff(crashed.engine, *crashed.catalog.tweak("dock.autohide_instant"));
    }
    writeFromOutside({"com.apple.dock", "autohide-delay"}, 0.0);  // the first of its two writes had been made
    {
        const auto other = Journal::open(Journal::defaultDirectory(sample.home()));
        const auto held = other->exclusive();
        EXPECT_TRUE(open().state().interrupted.empty()) << "another run is just making it";
    }
    settled()->refreshAll();
    ASSERT_EQ(state().interrupted.size(), 1u);
    model->deferRecovery();
    EXPECT_TRUE(state().recoveryDeferred);

    open();  // the next launch asks again
    EXPECT_FALSE(state().recoveryDeferred);
    std::size_t shownAfterwards = 0;  // before everything was read again
    model->setObserver([&](Topic) {
        if (!state().changeActivity) shownAfterwards += state().interrupted.size();
    });
    settled()->recover();
    EXPECT_EQ(shownAfterwards, 0u) << "what was put back is not asked for once more";
    EXPECT_TRUE(state().interrupted.empty());
    EXPECT_TRUE(state().recoveryFailures.empty());
    EXPECT_EQ(preferences(), before);
}

TEST_F(AppModelTest, AnUnreadableJournalLeavesADryRunThatSaysSo) {
    const fs::path journal = Journal::defaultDirectory(sample.home()) / "journal.json";
    setContents(journal, R"({"format": 2, "changes": {}})");
    const auto whole = everythingIn(folder.path);
    open();
    EXPECT_EQ(*state().startupError,
              "The change journal could not be opened: The change journal could not be read: the journal was "
              "written by a newer Brell (format 2); update Brell before changing anything. Nothing can be "
              "changed until this is fixed.");
    EXPECT_FALSE(state().isJournalDamaged);
    EXPECT_EQ(model->whyNothingReal(), state().startupError);
    apply({"dock.autohide"});
    EXPECT_TRUE(std::holds_alternative<OnByBrell>(stateOf("dock.autohide")));
    EXPECT_NE(out.str().find("dry-run: would write com.apple.dock autohide = true"), std::string::npos);
    EXPECT_EQ(changesIn(folder.path, whole), Texts());

    setContents(journal, "damaged");
    const std::string before = fs::temp_directory_path();
    ::setenv("TMPDIR", journal.c_str(), 1);
    const std::string both = messageOf([&] { open(); });
    ::setenv("TMPDIR", before.c_str(), 1);
    EXPECT_TRUE(both.starts_with("The change journal could not be read: " + journal.string())) << both;
    EXPECT_NE(both.find(". The folder for temporary files, TMPDIR, could not be used: "), std::string::npos);
}

TEST_F(AppModelTest, TheModelMayEndWhileWorkIsUnderWay) {
    open();
    model->apply("dock.autohide");
    model->loadLoginItems();
    model->loadVolumes();
    ASSERT_TRUE(loop.waitFor([&] { return !state().loginItems.empty(); })) << "in the middle of it";
    model.reset();
    loop.runUntilIdle();  // nothing comes back to what is gone
    EXPECT_EQ(open().state().interrupted.size(), 0u) << "the change was finished, or never begun";
}

}  // namespace brell::testing
