#include "BrellCore/Journal/Journal.h"
#include "CorvaneBrell/Window/PresetMenu.h"
#include "Tests/CorvaneBrell/Window/WindowFixture.h"

using namespace brell;
using namespace brell::testing;

namespace {

class SheetsTest : public WindowTest {
protected:
    // Of the button that the default key presses.
    QString defaultButton() const {
        for (const auto* one : sheet()->findChildren<QPushButton*>())
            if (one->isDefault()) return one->text();
        return "";
    }

    // Every way out of a sheet but the one that goes on, in turn.
    void expectLeavingChangesNothing(const std::string& named, const std::function<void()>& ask) {
        const std::vector<std::function<void()>> waysOut{
            [&] { QTest::keyClick(sheet(), Qt::Key_Escape); },
            [&] { QTest::keyClick(sheet(), Qt::Key_Return); },  // the default key
            [&] { sheet()->close(); },
            [&] { press(*sheet(), "Cancel"); },
        };
        for (const auto& leave : waysOut) {
            SCOPED_TRACE("way " + std::to_string(&leave - waysOut.data()));
            const auto before = everythingIn(folder.path);
            ask();
            settle();
            ASSERT_EQ(sheetTitle(), named);
            leave();
            settle();
            EXPECT_FALSE(sheet());
            EXPECT_EQ(everythingIn(folder.path), before);
        }
    }
};

TEST_F(SheetsTest, ADamagedJournalIsRebuiltForTheNextWindow) {
    haveAPast();
    damageTheJournal();
    openWindow();
    expectLeavingChangesNothing("Rebuild the journal from its history?", [&] { model->askRebuild(); });
    press(*window, "Rebuild from History...");
    expectWords(*sheet(), {"The history tells of", "It holds what Brell wrote."});
    press(*sheet(), "Rebuild");
    expectWords(*sheet(), {"The journal is rebuilt", "The journal as it was is kept as "});
    press(*sheet(), "Later");
    EXPECT_FALSE(sheet());
    EXPECT_FALSE(button(*window, "Rebuild from History...").isEnabled()) << "it is done";
    openWindow();
    EXPECT_FALSE(model->state().startupError);
    EXPECT_FALSE(model->state().entries.empty());

    fs::remove(*options.journalDirectory / "journal.json");
    openWindow();
    press(window->strip(), "Show Restore Script");
    EXPECT_TRUE(opened<QDialog>().findChild<QPlainTextEdit*>()->toPlainText().contains("(applied "));
    opened<QDialog>().close();
    press(window->strip(), "Rebuild from History...");
    press(*sheet(), "Rebuild");
    EXPECT_FALSE(model->state().entries.empty());
}

TEST_F(SheetsTest, ARestoreScriptThatOthersCouldHaveWrittenIsNotOffered) {
    haveAPast();
    const fs::path script = *options.journalDirectory / "restore.sh";
    for (const fs::path& writable : {script, *options.journalDirectory}) {
        damageTheJournal();
        fs::permissions(writable, fs::perms::others_write, fs::perm_options::add);
        openWindow();
        press(*window, "Show Restore Script");
        expectWords(opened<Sheet>(), {qt(writable.string()) + " can be written by every user"});
        fs::permissions(writable, fs::perms::others_write, fs::perm_options::remove);
    }
}

TEST_F(SheetsTest, BrellIsLeftStepByStepAndTheLastOneClosesTheWindow) {
    for (const char* place : {"HOME", "XDG_DATA_HOME"}) qputenv(place, qt(folder.path.string()).toUtf8());
    openWindow();
    settled()->apply("finder.status_bar");
    settled()->apply("dock.autohide");
    const auto journal = Journal::open(*options.journalDirectory);
    JournalEntry copied = journal->activeEntry("dock.autohide").value();
    copied.macOSVersion = "99.1.0";
    journal->upsert(copied);
    settled()->refreshAll();
    go(Screen::journal);
    expectWords(*window, {"2 active changes, 1 of them perhaps from another Mac or account."});
    expectLeavingChangesNothing("Leaving Brell", [&] { model->askLeaving(); });
    settled()->askLeaving();
    press(*sheet(), "Restore 2...");
    expectWords(*sheet(),
                {"Restore everything?", "It was made on macOS 99.1.0, which is newer than this Mac's"});
    type(sheet(), Qt::Key_Escape);
    ASSERT_EQ(sheetTitle(), "Leaving Brell") << "back to the step before";
    press(*sheet(), "Restore 2...");
    press(*sheet(), "Restore 2");
    expectWords(*sheet(), {"Leaving Brell", "2 of 2 keys are exactly as before."});
    EXPECT_TRUE(button(*sheet(), "Save Report...").isEnabled());
    EXPECT_EQ(defaultButton(), "Done");

    setContents(*options.journalDirectory / "notes.txt", "mine");
    settled()->askLeaving();
    EXPECT_FALSE(button(*sheet(), "Move to the Trash").isEnabled());
    expectWords(*sheet(), {"notes.txt is not Brell's"});
    fs::remove(*options.journalDirectory / "notes.txt");
#ifndef Q_OS_MACOS  // whose Trash is the user's own
    settled()->askLeaving();
    press(*sheet(), "Move to the Trash");
    ASSERT_EQ(sheetTitle(), "Brell has left");
    press(*sheet(), "Quit Brell");
    EXPECT_FALSE(window->isVisible());
    closeWindow();
    EXPECT_FALSE(fs::exists(*options.journalDirectory));
    EXPECT_TRUE(fs::exists(folder.path / "Trash" / "files" / "journal" / "journal.json"));
    EXPECT_EQ(contentsOf(sample.preferences() / "com.corvane.brell.plist").find("<key>"), std::string::npos);
#endif
}

TEST_F(SheetsTest, WhatIsTickedGoesIntoThePreset) {
    const fs::path file = folder.path / "mine.corvanepreset";
    openLivedIn();
    exportActivePreset(*model, window.get());
    settle();
    const auto ticks = sheet()->findChildren<QCheckBox*>();
    EXPECT_EQ(std::count_if(ticks.begin(), ticks.end(), [](auto* tick) { return tick->isChecked(); }), 5);
    EXPECT_EQ(std::count_if(ticks.begin(), ticks.end(), [](auto* tick) { return tick->isEnabled(); }), 5);
    expectWords(*sheet(), {"It is a login item; presets hold settings only."});
    EXPECT_TRUE(button(*sheet(), "Export 5...").isEnabled());
    for (int i = 4; i >= 1; --i) QTest::keyClick(ticks[i], Qt::Key_Space);
    const QString only = ticks[0]->accessibleName();
    press(*sheet(), "Export 1...");
    ASSERT_FALSE(sheet());
    emit opened<QFileDialog>().fileSelected(qt(file.string()));
    opened<QFileDialog>().close();
    settle();
    const DecodedPreset decoded = PresetFile::decode(contentsOf(file), model->catalog());
    ASSERT_EQ(decoded.preset.tweakIDs.size(), 1u);
    EXPECT_EQ(only, "Export " + qt(model->catalog().tweak(decoded.preset.tweakIDs[0])->title));
    EXPECT_EQ(decoded.preset.name, "My settings");
}

TEST_F(SheetsTest, LeavingAnySheetChangesNoFile) {
    openLivedIn();
    go(Screen::loginItems);
    settled()->apply("finder.status_bar");

    const std::string agent = "com.lumenfold.sync";
    const Preset& preset = Presets::shipped().front();
    expectLeavingChangesNothing("Restore everything?", [&] { model->askRestoreAll(); });
    expectLeavingChangesNothing("This setting was changed outside Brell",
                                [&] { model->turnOff("dock.autohide_instant"); });
    EXPECT_FALSE(model->state().driftRequest);
    expectLeavingChangesNothing("Turn off " + agent, [&] { model->askAgents({itemOf(agent).id}, false); });
    expectLeavingChangesNothing("Relaunch Finder?", [&] { model->askRelaunch(); });
    expectLeavingChangesNothing("Read macOS's list of background items?", [&] { model->askTaskList(); });
    expectLeavingChangesNothing("Apply “" + preset.name + "”?", [&] { model->askPreset(preset); });
    turnOnFromOutside("us.zoom.updater");
    settled()->loadAgentDrift();
    const Uuid drifted = settled()->state().driftedAgents.at(0).entry.id;
    const auto applyAgain = [&] { settled()->applyAgain({drifted}); };
    expectLeavingChangesNothing("Apply again what was changed outside Brell?", applyAgain);
    EXPECT_FALSE(model->state().errorMessage) << *model->state().errorMessage;
    EXPECT_TRUE(applications.requests.empty());
    applyAgain();
    press(*sheet(), "Apply Again");
    EXPECT_TRUE(settled()->state().driftedAgents.empty());
}

TEST_F(SheetsTest, AnInterruptedChangeIsAskedForUntilItIsPutBackOrPutOff) {
    haveAPast();
    openWindow();
    press(*sheet(), "For experts");
    expectSample(*sheet(), "sheet-of-an-interruption");
    window->move(300, 200);
    settle();
    EXPECT_TRUE(window->geometry().contains(sheet()->geometry())) << "it hangs from its window";
    EXPECT_EQ(defaultButton(), "Later");

    const auto before = everythingIn(folder.path);
    type(sheet(), Qt::Key_Escape);
    EXPECT_FALSE(sheet());
    EXPECT_TRUE(model->state().recoveryDeferred);
    EXPECT_EQ(everythingIn(folder.path), before);
    EXPECT_TRUE(button(window->strip(), "Restore").isVisible());

    openWindow();
    ASSERT_EQ(sheetTitle(), "Brell was interrupted while changing a setting") << "the next launch asks again";
    press(*sheet(), "Restore");
    EXPECT_FALSE(sheet());
    EXPECT_TRUE(model->state().interrupted.empty());
    EXPECT_FALSE(words(window->strip()).contains("relaunch")) << "nothing had been written";
}

TEST_F(SheetsTest, LaunchdsRefusalOfAnInterruptedAgentIsToldInTheOpenSheetWithoutMovingIt) {
    const std::string label = "com.spotify.client.startuphelper";
    openWindow();
    go(Screen::loginItems);
    settled()->askAgents({itemOf(label).id}, true);
    settled()->confirmAgents();
    closeWindow();
    rewriteJournal(R"(s/"applied"/"capturing"/)");
    openWindow();
    const QPointer<Sheet> first = sheet();
    const QPoint place = button(*first, "Restore").mapToGlobal(QPoint());
    expectWords(*first, {"A login item. Restoring it runs:"});

    const fs::path elsewhere = sample.systemRoot() / "Library/LaunchAgents" / (label + ".plist");
    fs::rename(fileOf(label), elsewhere);
    launchd(AllowedCommand::launchctlBootout("gui/501", label));
    EXPECT_TRUE(launchd(AllowedCommand::launchctlBootstrap("gui/501", elsewhere)).succeeded());
    settled()->lookAgain();
    ASSERT_TRUE(first && sheet() == first);
    expectWords(*first, {"can't be put back, so none of these commands is run: " + qt(label) + " is loaded"});
    EXPECT_EQ(button(*first, "Restore").mapToGlobal(QPoint()), place);
    settled()->deferRecovery();
    settled()->askLeaving();
    expectWords(*sheet(), {"which is not in your LaunchAgents folder", "with Keep Unchanged."});
    press(*sheet(), "Restore 1...");
    expectWords(*sheet(), {"None of this can be put back. The Journal page offers to keep it unchanged."});
}

TEST_F(SheetsTest, DriftIsOverriddenOnlyWhereThatIsTheAnswer) {
    const PrefKey expanded{std::string(globalDomain), "NSNavPanelExpandedStateForSaveMode"};
    openLivedIn();
    const StoredValue theirs = stored(autohideDelay);

    // Of several the others are restored, whatever is ticked: in one sheet.
    const Uuid drifted = model->state().drifted.front().entry.id;
    settled()->askUndoSince(drifted);
    expectSample(*sheet(), "sheet-of-a-drift");  // only what came since, keys behind a disclosure
    auto* tick = sheet()->findChild<QCheckBox*>();
    EXPECT_FALSE(tick->isChecked());
    EXPECT_EQ(defaultButton(), "Cancel");
    const QAbstractButton& restore = button(*sheet(), "Restore 6");
    QTest::keyClick(tick, Qt::Key_Space);
    EXPECT_EQ(restore.text(), "Restore 7");
    QTest::keyClick(tick, Qt::Key_Space);
    press(*sheet(), "Restore 6");
    ASSERT_FALSE(sheet());
    EXPECT_EQ(stored(autohideDelay), theirs);
    EXPECT_EQ(stored(expanded), StoredValue::absent());

    // One alone takes one sheet and one click, from the journal and from the page, and nothing is ticked.
    settled()->askRestore(drifted);
    ASSERT_EQ(sheetTitle(), "This setting was changed outside Brell");
    EXPECT_EQ(defaultButton(), "Cancel");
    type(sheet(), Qt::Key_Return);
    ASSERT_FALSE(sheet());
    settled()->turnOff("dock.autohide_instant");
    EXPECT_FALSE(sheet()->findChild<QCheckBox*>());
    type(sheet(), Qt::Key_Escape);
    settled()->askRestore(drifted);
    press(*sheet(), "Restore");
    EXPECT_FALSE(sheet());
    EXPECT_NE(stored(autohideDelay), theirs);
    EXPECT_TRUE(model->state().drifted.empty());
}

TEST_F(SheetsTest, OneSheetAtATimeTheMostImportantFirst) {
    openLivedIn();
    settled()->askPreset(Presets::shipped().front());
    const QPointer<Sheet> first = sheet();
    settled()->askPreset(Presets::shipped().back());
    EXPECT_FALSE(first) << "another request, another sheet";
    expectWords(*sheet(), {qt(Presets::shipped().back().name)});

    settled()->askRestoreAll();
    expectWords(*sheet(), {"Restore everything?", "Everything else Brell changed is restored."});
    settled()->turnOff("dock.autohide_instant");
    EXPECT_EQ(sheetTitle(), "This setting was changed outside Brell");
    for (int more = 0; more < 3; ++more) {
        EXPECT_EQ(visible<Sheet>(*window), std::vector<Sheet*>{sheet()});
        type(sheet(), Qt::Key_Escape);
    }
    EXPECT_FALSE(sheet());
}

TEST_F(SheetsTest, APresetSaysWhatItWouldDoAndWhatItDid) {
    openLivedIn();
    const std::vector<std::string> mixed{"finder.status_bar", "finder.show_extensions",
                                         "dock.autohide_instant", "anim.no_window_animation",
                                         "finder.from_tomorrow"};
    settled()->askPreset({"mixed", "Mixed", "", mixed});
    expectSample(*sheet(), "sheet-of-a-preset");
    press(*sheet(), "Apply");
    EXPECT_TRUE(words(*sheet()).startsWith("What the preset came to"));
    expectWords(*sheet(), {"1 of 2 changes were made; 1 was refused.\n\nShow the hidden Dock"});
    type(sheet(), Qt::Key_Return);
    EXPECT_FALSE(sheet()) << "it was read";

    settled()->askPreset({"nothing", "Nothing", "", {"finder.show_extensions"}});
    EXPECT_FALSE(button(*sheet(), "Apply").isEnabled());
}

// One line for what stands, the most urgent first, one for what passes.
TEST_F(SheetsTest, TheStripTellsWhatConcernsNoPageAlone) {
    openWindow();
    Strip& strip = window->strip();
    const int height = strip.height();
    for (const char* tweakID : {"text.no_autocapitalize", "dock.no_bounce", "finder.status_bar"})
        settled()->apply(tweakID);
    expectWords(strip, {"2 apps wait for a relaunch: 2 changes"});
    press(strip, "Relaunch...");
    expectWords(*sheet(), {"Relaunch the Dock and Finder?", "No bouncing when apps open"});
    QTest::keyClick(sheet(), Qt::Key_Escape);

    // What was dismissed stays away, and what comes next is told even in the same words.
    for (const char* tweakID : {"dock.no_bounce", "text.no_autocapitalize"}) {
        settled()->turnOff(tweakID);
        expectWords(strip, {"1 of 1 key is exactly as before."});
        press(strip, "Dismiss: What was done");
        EXPECT_FALSE(words(strip).contains("exactly")) << tweakID;
    }

    settled()->applyChoice("dock.size", std::string(300, 'x'));
    EXPECT_TRUE(words(strip).startsWith("Brell could not do that: Icon size has no choice xxx"));
    EXPECT_FALSE(words(strip).contains("wait")) << "the most urgent first";
    press(strip, "Brell could not do that: all of it");
    expectWords(opened<Sheet>(), {"Icon size has no choice " + QString(300, 'x') + "."});
    opened<Sheet>().close();
    press(strip, "1 more");
    expectWords(strip, {"waits for a relaunch"});
    press(strip, "1 more");
    press(strip, "Dismiss: Brell could not do that");
    EXPECT_FALSE(model->state().errorMessage);
    EXPECT_EQ(strip.height(), height);
}

TEST_F(SheetsTest, ButtonsOfTheStripThatHaveNoRoomAreInAMenu) {
    openLivedIn();
    window->resize(window->minimumSize());
    damageTheJournal();
    EXPECT_TRUE(words(window->strip()).startsWith("The change journal")) << "some words have room";
    EXPECT_TRUE(button(window->strip(), "Rebuild from History...").isEnabled());
    press(window->strip(), "The change journal: more");
    auto& others = opened<QMenu>();
    ASSERT_EQ(others.actions().back()->text(), "Show Restore Script");
    others.actions().back()->trigger();
    others.close();
    settle();
    EXPECT_TRUE(opened<QDialog>().findChild<QPlainTextEdit*>()->toPlainText().startsWith("#!"));
    opened<QDialog>().close();
}

TEST_F(SheetsTest, WhatWasDoneIsToldForAWhileAndAsLongAsTheFocusIsOnIt) {
    openWindow();
    settled()->apply("text.no_smart_quotes");
    window->strip().setStay(std::chrono::milliseconds(0));
    window->activateWindow();
    settled()->turnOff("text.no_smart_quotes");
    const auto isTold = [&] { return words(window->strip()).contains("exactly as before"); };
    QTRY_VERIFY(!isTold());

    window->strip().setStay(std::chrono::milliseconds(20));
    settled()->apply("text.no_smart_quotes");
    settled()->turnOff("text.no_smart_quotes");
    if (isTold()) {
        button(window->strip(), "Dismiss: What was done").setFocus();
        QTest::qWait(60);
        EXPECT_TRUE(isTold());
        window->sidebar().pages().setFocus();
    }
    QTRY_VERIFY(!isTold());
}

}  // namespace
