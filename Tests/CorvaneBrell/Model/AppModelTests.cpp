// Whole stories, driven as a user would and judged by the files.

#include <gtest/gtest.h>

#include <thread>

#include "BrellCore/Support/FileContents.h"
#include "Tests/CorvaneBrell/Model/AppModelFixture.h"

namespace brell {

namespace fs = std::filesystem;
using testing::AppModelTest;
using testing::contentsOf;
using testing::setContents;

namespace {

const PrefKey autohide{"com.apple.dock", "autohide"};
const PrefKey pathBar{"com.apple.finder", "ShowPathbar"};

}  // namespace

TEST_F(AppModelTest, FirstLaunchShowsEveryTweakAndWritesNothing) {
    const auto before = preferences();
    const auto model = openModel();

    EXPECT_EQ(model->state().statuses.size(), 50u);
    EXPECT_TRUE(model->state().statusErrors.empty());
    EXPECT_TRUE(model->state().entries.empty());
    EXPECT_FALSE(model->state().startupError);
    EXPECT_FALSE(model->whyNothingReal());
    EXPECT_EQ(preferences(), before);
    EXPECT_FALSE(fs::exists(model->journalDirectory()));
}

TEST_F(AppModelTest, ApplyTurnOffAndUndoTellEachPropertyOnceAndLeaveThePreferencesAsTheyWere) {
    const auto before = preferences();
    const auto model = openModel();
    announced.clear();

    model->apply("dock.autohide");
    EXPECT_TRUE(model->state().changeActivity);
    EXPECT_TRUE(std::holds_alternative<Off>(status(*model, "dock.autohide").state))
        << "the change runs beside";
    settle(*model);

    EXPECT_TRUE(std::holds_alternative<OnByBrell>(status(*model, "dock.autohide").state));
    EXPECT_EQ(model->state().pendingEffects, std::set{EffectClass::dockRelaunch});
    EXPECT_EQ(model->changedTweaks(), std::vector<std::string>{"dock.autohide"});
    EXPECT_EQ(model->changedCount(Screen::dock), 1u);
    EXPECT_EQ(model->changedCount(Screen::finder), 0u);
    EXPECT_EQ(announced[Property::statuses], 1);
    EXPECT_EQ(announced[Property::entries], 1);
    EXPECT_EQ(announced[Property::changeActivity], 2) << "begun and ended";
    EXPECT_EQ(announced.count(Property::errorMessage), 0u);
    ASSERT_EQ(model->state().undoStack.size(), 1u);
    EXPECT_EQ(model->state().undoStack.back().name, "Hide the Dock automatically");

    model->undoLast();
    settle(*model);
    EXPECT_EQ(preferences(), before);
    EXPECT_EQ(model->state().undoProof, "1 of 1 key is exactly as before.");
    EXPECT_TRUE(model->state().undoStack.empty());
    EXPECT_TRUE(model->state().pendingEffects.empty())
        << "undone before the relaunch: nothing to relaunch for";

    model->apply("dock.autohide");
    settle(*model);
    model->turnOff("dock.autohide");
    settle(*model);
    EXPECT_EQ(preferences(), before);
    model->undoLast();  // of the turning off
    settle(*model);
    EXPECT_EQ(sample.openPreferences()->exactValue(autohide), StoredValue(true));
}

TEST_F(AppModelTest, AnotherChoiceReplacesTheFirstOneAndKeepsTheOriginal) {
    const PrefKey tileSize{"com.apple.dock", "tilesize"};
    const auto model = openModel();
    model->applyChoice("dock.size", "large");
    settle(*model);
    model->applyChoice("dock.size", "small");
    settle(*model);

    EXPECT_EQ(sample.openPreferences()->exactValue(tileSize), StoredValue(36));
    EXPECT_EQ(status(*model, "dock.size").currentChoiceID, "small");
    ASSERT_EQ(model->state().entries.size(), 2u);
    EXPECT_EQ(model->state().entries.front().writes.front().original, StoredValue(41));

    EXPECT_FALSE(model->state().undoProof) << "the key holds a new value, not the old one";

    model->apply("dock.size", std::vector<PrefValue>{"big"});  // refused by the engine
    settle(*model);
    EXPECT_EQ(model->state().errorMessage, "dock.size: tilesize takes a int, not a string.");
    EXPECT_EQ(sample.openPreferences()->exactValue(tileSize), StoredValue(36))
        << "the user keeps what was there";
    EXPECT_TRUE(std::holds_alternative<OnByBrell>(status(*model, "dock.size").state));

    model->applyChoice("dock.size", "enormous");
    EXPECT_EQ(model->state().errorMessage, "Icon size has no choice enormous.");
    model->dismissError();
    EXPECT_FALSE(model->state().errorMessage);
}

TEST_F(AppModelTest, UndoGoesBackOneActionAtATime) {
    const PrefKey tileSize{"com.apple.dock", "tilesize"};
    const auto model = openModel();
    for (const char* choice : {"large", "small"}) {
        model->applyChoice("dock.size", choice);
        settle(*model);
    }
    model->undoLast();
    settle(*model);
    EXPECT_EQ(sample.openPreferences()->exactValue(tileSize), StoredValue(64)) << "back to the first choice";
    model->turnOff("dock.size");
    model->turnOff("dock.size");  // a second click while the first is under way
    settle(*model);
    EXPECT_EQ(sample.openPreferences()->exactValue(tileSize), StoredValue(41));
    EXPECT_FALSE(model->state().errorMessage);

    model->apply("finder.show_extensions");  // set before Brell
    settle(*model);
    model->askRestore(model->state().entries.front().id);
    model->confirmRestore();
    settle(*model);
    model->turnOff("finder.show_extensions");
    model->turnOff("finder.show_extensions");
    settle(*model);
    EXPECT_TRUE(std::holds_alternative<OffByBrell>(status(*model, "finder.show_extensions").state));
}

TEST_F(AppModelTest, DriftIsAskedForAndCancellingChangesNothing) {
    const auto model = openModel();
    model->apply("dock.autohide");
    model->apply("finder.show_hidden");
    settle(*model);
    writeFromOutside(autohide, "no");
    model->refreshAll();
    settle(*model);
    EXPECT_TRUE(std::holds_alternative<ChangedOutsideBrell>(status(*model, "dock.autohide").state));

    model->turnOff("dock.autohide");
    settle(*model);
    ASSERT_TRUE(model->state().driftRequest);
    EXPECT_EQ(model->state().driftRequest->title(), "This setting was changed outside Brell");
    ASSERT_EQ(model->state().driftRequest->entries.size(), 1u);
    EXPECT_EQ(
        model->state().driftRequest->entries.front().lines,
        std::vector<std::string>{"com.apple.dock autohide: now \"no\"; Brell wrote true; original false"});

    const auto whole = testing::everythingIn(folder.path);
    model->cancelDrift();
    settle(*model);
    EXPECT_FALSE(model->state().driftRequest);
    EXPECT_EQ(changedSince(whole), std::vector<std::string>());

    model->turnOff("dock.autohide");
    settle(*model);
    ASSERT_TRUE(model->state().driftRequest);
    model->confirmDrift({model->state().driftRequest->entries.front().entry.id});
    settle(*model);
    EXPECT_EQ(sample.openPreferences()->exactValue(autohide), StoredValue(false));
    EXPECT_EQ(model->state().undoProof, "1 of 1 key is exactly as before.");
}

TEST_F(AppModelTest, AChangeThatMeetsDriftIsMadeAfterTheDriftIsConfirmed) {
    const PrefKey tileSize{"com.apple.dock", "tilesize"};
    const auto model = openModel();
    model->applyChoice("dock.size", "large");
    settle(*model);
    writeFromOutside(tileSize, 77);
    model->applyChoice("dock.size", "small");
    settle(*model);

    ASSERT_TRUE(model->state().driftRequest);
    ASSERT_TRUE(model->state().pendingAfterDrift);
    EXPECT_EQ(sample.openPreferences()->exactValue(tileSize), StoredValue(77));
    model->confirmDrift({model->state().driftRequest->entries.front().entry.id});
    settle(*model);
    EXPECT_EQ(sample.openPreferences()->exactValue(tileSize), StoredValue(36));
    EXPECT_FALSE(model->state().pendingAfterDrift);
    ASSERT_FALSE(model->state().entries.empty());
    EXPECT_EQ(model->state().entries.front().writes.front().original, StoredValue(41))
        << "the first original is kept";
}

TEST_F(AppModelTest, RestoreAllShowsEveryKeyAndRestoresWhatWasTickedAndWhatDidNotDrift) {
    const auto before = preferences();
    const auto model = openModel();
    for (const char* id : {"dock.autohide", "finder.show_hidden", "finder.path_bar", "shot.jpg"})
        model->apply(id);
    settle(*model);
    writeFromOutside(autohide, "no");
    writeFromOutside(pathBar, false);

    model->askRestoreAll();
    ASSERT_TRUE(model->state().restoreRequest);
    EXPECT_EQ(model->state().restoreRequest->lines.size(), 4u);
    EXPECT_EQ(model->state().restoreRequest->lines.front(), "com.apple.screencapture type: back to \"png\"");
    const auto whole = testing::everythingIn(folder.path);
    model->cancelRestore();
    EXPECT_EQ(changedSince(whole), std::vector<std::string>());

    model->askRestoreAll();
    model->confirmRestore();
    settle(*model);
    ASSERT_TRUE(model->state().driftRequest);
    EXPECT_EQ(model->state().driftRequest->title(), "Some settings were changed outside Brell");
    ASSERT_EQ(model->state().driftRequest->entries.size(), 2u);
    const Uuid ticked = model->state().driftRequest->entries.back().entry.id;
    EXPECT_EQ(model->state().driftRequest->entries.back().entry.tweakID, "dock.autohide");
    model->confirmDrift({ticked});
    settle(*model);

    auto expected = before;
    expected["com.apple.finder"].insert_or_assign("ShowPathbar", PrefValue(false));
    EXPECT_EQ(preferences(), expected);
    EXPECT_EQ(model->changedTweaks(), std::vector<std::string>{"finder.path_bar"});
}

TEST_F(AppModelTest, AnEntryThatIsAlreadyBackClosesWithoutAsking) {
    const auto model = openModel();
    model->apply("dock.autohide");
    settle(*model);
    writeFromOutside(autohide, false);  // what it was before
    model->askRestore(model->state().entries.front().id);
    model->confirmRestore();
    settle(*model);

    EXPECT_FALSE(model->state().driftRequest);
    EXPECT_EQ(model->state().entries.front().status, EntryStatus::restored);
    EXPECT_EQ(model->state().undoProof,
              "1 of 1 key is exactly as before. Hide the Dock automatically was already back as it was.");
}

TEST_F(AppModelTest, UndoSinceRestoresThatChangeAndLaterOnesOnly) {
    const auto model = openModel();
    for (const char* id : {"dock.autohide", "finder.show_hidden", "shot.jpg"}) {
        model->apply(id);
        settle(*model);
    }
    model->askUndoSince(model->state().entries[1].id);
    ASSERT_TRUE(model->state().restoreRequest);
    EXPECT_EQ(model->state().restoreRequest->title, "Restore everything since Show hidden files?");
    model->confirmRestore();
    settle(*model);
    EXPECT_EQ(model->changedTweaks(), std::vector<std::string>{"dock.autohide"});
}

TEST_F(AppModelTest, ApplyAgainMakesTheResetChangeAnewWithItsFirstOriginal) {
    const auto model = openModel();
    model->apply("dock.autohide");
    settle(*model);
    writeFromOutside(autohide, "reset by an update");
    model->applyAgain({model->state().entries.front().id});
    settle(*model);

    EXPECT_TRUE(std::holds_alternative<OnByBrell>(status(*model, "dock.autohide").state));
    EXPECT_EQ(model->state().entries.front().writes.front().original, StoredValue(false));
}

TEST_F(AppModelTest, AnInterruptedChangeIsFoundDeferredAndRecovered) {
    const auto before = preferences();
    {
        std::ostringstream ignored;
        Dependencies crashed(options, ignored);
        struct Crash {};
        crashed.engine.setAfterCaptureHook([](const JournalEntry&) { throw Crash(); });
        EXPECT_THROW(crashed.engine.apply(*crashed.catalog.tweak("dock.autohide_instant")), Crash);
    }
    writeFromOutside({"com.apple.dock", "autohide-delay"}, 0.0);  // the first of its two writes had been made

    auto model = openModel();
    ASSERT_EQ(model->state().interrupted.size(), 1u);
    model->deferRecovery();
    EXPECT_TRUE(model->state().recoveryDeferred);
    EXPECT_EQ(model->state().interrupted.size(), 1u);

    model = openModel();  // the next launch asks again
    EXPECT_FALSE(model->state().recoveryDeferred);
    model->recover();
    settle(*model);
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
              "by a newer Brell (format 2); update Brell before changing anything.. Nothing can be changed "
              "until this "
              "is fixed.");
    EXPECT_TRUE(model->options().dryRun);
    EXPECT_EQ(model->whyNothingReal(), model->state().startupError);
    model->apply("dock.autohide");
    settle(*model);
    EXPECT_TRUE(std::holds_alternative<OnByBrell>(status(*model, "dock.autohide").state));
    EXPECT_NE(out.str().find("dry-run: would write com.apple.dock autohide = true"), std::string::npos);
    EXPECT_EQ(changedSince(whole), std::vector<std::string>());
    fs::remove_all(model->journalDirectory());
}

TEST_F(AppModelTest, TwoModelsOverOneJournalSeeEachOther) {
    const auto one = openModel();
    const auto other = openModel();
    one->apply("dock.autohide");
    settle(*one);
    other->apply("dock.autohide");  // replaces: restored first, then applied anew
    other->apply("finder.show_hidden");
    settle(*other);
    one->refreshAll();
    settle(*one);
    EXPECT_EQ(one->state().entries, other->state().entries);
    EXPECT_EQ(one->changedTweaks(), (std::vector<std::string>{"finder.show_hidden", "dock.autohide"}));
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
    const PrefKey size{"com.apple.dock", "tilesize"};
    const auto before = preferences();
    const auto sizeNow = [&] { return sample.openPreferences()->exactValue(size); };
    const auto model = openModel();
    const auto confirmAllDrift = [&] {
        ASSERT_TRUE(model->state().driftRequest);
        std::set<Uuid> all;
        for (const DriftedEntry& drifted : model->state().driftRequest->entries) all.insert(drifted.entry.id);
        model->confirmDrift(all);
        settle(*model);
    };
    model->applyChoice("dock.size", "large");
    settle(*model);
    model->applyChoice("dock.size", "small");
    settle(*model);

    writeFromOutside(size, 50);
    model->undoLast();
    settle(*model);
    EXPECT_EQ(sizeNow(), StoredValue(50)) << "nothing of others is overwritten unasked";
    ASSERT_NO_FATAL_FAILURE(confirmAllDrift());
    EXPECT_EQ(sizeNow(), StoredValue(64)) << "the undo went on to what the last action had replaced";
    EXPECT_EQ(model->state().undoStack.size(), 1u);

    model->undoLast();
    settle(*model);
    EXPECT_EQ(preferences(), before);
    EXPECT_TRUE(model->state().undoStack.empty());

    // macOS's own value over a choice that others changed since; then back to what was there at first.
    model->applyChoice("dock.size", "large");
    settle(*model);
    writeFromOutside(size, 50);
    model->useSystemDefault("dock.size");
    settle(*model);
    ASSERT_NO_FATAL_FAILURE(confirmAllDrift());
    EXPECT_EQ(sizeNow(), StoredValue::absent());
    model->undoLast();
    settle(*model);
    EXPECT_EQ(preferences(), before);
}

TEST_F(AppModelTest, UndoingAPresetOrARestoreDoesWhatItCanAndApplyAgainLeadsToTheOriginals) {
    const auto before = preferences();
    const auto model = openModel();
    model->apply("dock.autohide");
    model->apply("finder.show_hidden");
    settle(*model);
    model->askRestoreAll();
    model->confirmRestore();
    settle(*model);
    model->apply("dock.autohide");
    settle(*model);
    model->turnOff("dock.autohide");
    settle(*model);
    model->undoLast();  // on again
    settle(*model);
    model->undoLast();  // the first turning on: off again
    settle(*model);
    model->undoLast();  // the restoring of both
    settle(*model);
    EXPECT_FALSE(model->state().errorMessage) << *model->state().errorMessage;
    EXPECT_EQ(model->changedTweaks(), (std::vector<std::string>{"finder.show_hidden", "dock.autohide"}));

    writeFromOutside({"com.apple.dock", "autohide"}, false);
    model->refreshAll();
    settle(*model);
    ASSERT_EQ(model->state().drifted.size(), 1u);
    model->applyAgain({model->state().drifted.front().entry.id});
    settle(*model);
    EXPECT_EQ(sample.openPreferences()->exactValue({"com.apple.dock", "autohide"}), StoredValue(true));
    model->undoLast();
    settle(*model);
    EXPECT_EQ(model->changedTweaks(), std::vector<std::string>{"finder.show_hidden"});
    model->turnOff("finder.show_hidden");
    settle(*model);
    EXPECT_EQ(preferences(), before);
}

TEST_F(AppModelTest, ThousandsOfEntriesKeepARefreshQuick) {
    JournalEntry entry{};
    std::ostringstream ignored;
    {
        Dependencies deps(options, ignored);
        entry = deps.engine.apply(*deps.catalog.tweak("dock.autohide"));
        entry = deps.engine.restore(entry.id, false);
    }
    // The journal grows by repeating the entry's text under other identifiers.
    const fs::path file = Journal::defaultDirectory(sample.home()) / "journal.json";
    const std::string one = contentsOf(file);
    const std::size_t begin = one.find('{', 1), end = one.rfind("\n  ]");
    std::string many = one.substr(0, end);
    for (int i = 0; i < 10'000; ++i) {
        std::string copy = one.substr(begin, end - begin);
        copy.replace(copy.find(entry.id.text()), 36, Uuid::random().text());
        many += ",\n    " + copy;
    }
    setContents(file, many + one.substr(end));

    const auto model = openModel();
    ASSERT_EQ(model->state().entries.size(), 10'001u);
    // Against the same machine's own speed: copying the list a few times.
    const auto timeOf = [](const auto& action) {
        const auto start = std::chrono::steady_clock::now();
        action();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    const double copying = timeOf([&] {
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(std::vector<JournalEntry>(model->state().entries).size(), 10'001u);
    });
    EXPECT_LT(timeOf([&] { model->refreshAll(); }), std::max(0.05, 4 * copying));
    settle(*model);
}

}  // namespace brell
