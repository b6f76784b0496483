#include <gtest/gtest.h>

#include <QCheckBox>
#include <QFileDialog>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>

#include "BrellCore/Journal/Journal.h"
#include "CorvaneBrell/Window/PresetMenu.h"
#include "Tests/CorvaneBrell/Window/WindowFixture.h"

using namespace brell;
using namespace brell::testing;

namespace fs = std::filesystem;

namespace {

QPushButton* defaultButton(const QWidget& sheet) {
    for (auto* one : sheet.findChildren<QPushButton*>())
        if (one->isDefault()) return one;
    return nullptr;
}

class SheetsTest : public WindowTest {
protected:
    Sheet* sheet() { return window->sheets().current(); }
    // The title of the sheet that is open; empty when none is.
    std::string title() { return sheet() ? utf8(sheet()->windowTitle()) : ""; }

    // Every way out of a sheet but the one that goes on, in turn.
    void expectLeavingChangesNothing(const std::string& named, const std::function<void()>& ask) {
        const std::vector<std::function<void()>> waysOut{
            [&] { QTest::keyClick(sheet(), Qt::Key_Escape); },
            [&] { QTest::keyClick(sheet(), Qt::Key_Return); },  // the default key
            [&] { sheet()->close(); },
            [&] { press(*sheet(), "Cancel"); },
        };
        for (std::size_t i = 0; i < waysOut.size(); ++i) {
            const auto before = everythingIn(folder.path);
            ask();
            settle();
            ASSERT_EQ(title(), named) << "way " << i;
            waysOut[i]();
            settle();
            EXPECT_FALSE(sheet()) << "way " << i;
            EXPECT_EQ(everythingIn(folder.path), before) << "way " << i;
        }
    }
};

TEST_F(SheetsTest, ADamagedJournalIsRebuiltForTheNextWindow) {
    haveAPast();
    setContents(*options.journalDirectory / "journal.json", "damaged");
    openWindow();
    expectLeavingChangesNothing("Rebuild the journal from its history?", [&] { model->askRebuild(); });
    press(*window, "Rebuild from History...");
    ASSERT_EQ(title(), "Rebuild the journal from its history?");
    EXPECT_TRUE(words(*sheet()).contains("The history tells of"));
    EXPECT_TRUE(words(*sheet()).contains("It holds what Brell wrote."));
    press(*sheet(), "Rebuild");
    ASSERT_EQ(title(), "The journal is rebuilt");
    EXPECT_TRUE(words(*sheet()).contains("The damaged journal is kept as "));
    press(*sheet(), "Later");
    EXPECT_FALSE(sheet());
    EXPECT_FALSE(button(*window, "Rebuild from History...").isEnabled()) << "it is done";
    openWindow();
    EXPECT_FALSE(model->state().startupError);
    EXPECT_FALSE(model->state().entries.empty());
}

TEST_F(SheetsTest, ARestoreScriptThatOthersCouldHaveWrittenIsNotOffered) {
    haveAPast();
    const fs::path script = *options.journalDirectory / "restore.sh";
    for (const fs::path& writable : {script, *options.journalDirectory}) {
        setContents(*options.journalDirectory / "journal.json", "damaged");
        fs::permissions(writable, fs::perms::others_write, fs::perm_options::add);
        openWindow();
        press(*window, "Show Restore Script");
        auto* message = window->findChild<Sheet*>();
        ASSERT_TRUE(message);
        EXPECT_TRUE(words(*message).contains(qt(writable.string()) + " can be written by every user"));
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
    EXPECT_TRUE(words(*window).contains("2 active changes, 1 of them perhaps from another Mac or account."));
    expectLeavingChangesNothing("Leaving Brell", [&] { model->askLeaving(); });
    settled()->askLeaving();
    press(*sheet(), "Restore 2...");
    ASSERT_EQ(title(), "Restore everything?");
    EXPECT_TRUE(words(*sheet()).contains("It was made on macOS 99.1.0, which is newer than this Mac's"));
    type(sheet(), Qt::Key_Escape);
    ASSERT_EQ(title(), "Leaving Brell") << "back to the step before";
    press(*sheet(), "Restore 2...");
    press(*sheet(), "Restore 2");
    ASSERT_EQ(title(), "Leaving Brell");
    EXPECT_TRUE(words(*sheet()).contains("2 of 2 keys are exactly as before."));
    EXPECT_TRUE(button(*sheet(), "Save Report…").isEnabled());
    EXPECT_EQ(defaultButton(*sheet())->text(), "Done");

    setContents(*options.journalDirectory / "notes.txt", "mine");
    settled()->askLeaving();
    EXPECT_FALSE(button(*sheet(), "Move to the Trash").isEnabled());
    EXPECT_TRUE(words(*sheet()).contains("notes.txt is not Brell's"));
    fs::remove(*options.journalDirectory / "notes.txt");
    settled()->askLeaving();
    press(*sheet(), "Move to the Trash");
    ASSERT_EQ(title(), "Brell has left");
    press(*sheet(), "Quit Brell");
    EXPECT_FALSE(window->isVisible());
    closeWindow();
    EXPECT_FALSE(fs::exists(*options.journalDirectory));
    EXPECT_TRUE(fs::exists(folder.path / "Trash" / "files" / "journal" / "journal.json"));
    EXPECT_EQ(contentsOf(sample.preferences() / "com.corvane.brell.plist").find("<key>"), std::string::npos);
}

TEST_F(SheetsTest, WhatIsTickedGoesIntoThePreset) {
    const fs::path file = folder.path / "mine.corvanepreset";
    openLivedIn();
    exportActivePreset(*model, window.get());
    settle();
    const auto ticks = sheet()->findChildren<QCheckBox*>();
    EXPECT_EQ(std::count_if(ticks.begin(), ticks.end(), [](auto* tick) { return tick->isChecked(); }), 5);
    EXPECT_EQ(std::count_if(ticks.begin(), ticks.end(), [](auto* tick) { return tick->isEnabled(); }), 5);
    EXPECT_TRUE(words(*sheet()).contains("It is a login item; presets hold settings only."));
    EXPECT_TRUE(button(*sheet(), "Export 5...").isEnabled());
    for (int i = 4; i >= 1; --i) QTest::keyClick(ticks[i], Qt::Key_Space);
    const QString only = ticks[0]->accessibleName();
    press(*sheet(), "Export 1...");
    ASSERT_FALSE(sheet());
    auto* dialog = window->findChild<QFileDialog*>();
    emit dialog->fileSelected(qt(file.string()));
    dialog->close();
    settle();
    const DecodedPreset decoded = PresetFile::decode(contentsOf(file), model->catalog());
    ASSERT_EQ(decoded.preset.tweakIDs.size(), 1u);
    EXPECT_EQ(only, "Export " + qt(model->catalog().tweak(decoded.preset.tweakIDs[0])->title));
    EXPECT_EQ(decoded.preset.name, "My settings");
}

TEST_F(SheetsTest, LeavingAnySheetChangesNoFile) {
    openLivedIn();
    go(Screen::loginItems);
    const auto& items = model->state().loginItems;
    const auto agent = std::find_if(items.begin(), items.end(), [](const LoginItemRow& row) {
        return row.badge == LoginItemBadge::toggleable && row.isOn;
    });
    ASSERT_NE(agent, items.end());
    settled()->apply("finder.status_bar");

    expectLeavingChangesNothing("Restore everything?", [&] { model->askRestoreAll(); });
    expectLeavingChangesNothing("This setting was changed outside Brell",
                                [&] { model->turnOff("dock.autohide_instant"); });
    EXPECT_FALSE(model->state().driftRequest);
    expectLeavingChangesNothing("Turn off " + agent->record->label().value(),
                                [&] { model->askAgents({agent->id}, false); });
    expectLeavingChangesNothing("Relaunch Finder?", [&] { model->askRelaunch(); });
    expectLeavingChangesNothing("Read macOS's list of background items?", [&] { model->askTaskList(); });
    expectLeavingChangesNothing("Apply " + Presets::shipped().front().name + "?",
                                [&] { model->askPreset(Presets::shipped().front()); });
    EXPECT_FALSE(model->state().errorMessage) << *model->state().errorMessage;
    EXPECT_TRUE(applications.requests.empty());
}

TEST_F(SheetsTest, AnInterruptedChangeIsAskedForUntilItIsPutBackOrPutOff) {
    haveAPast();
    openWindow();
    ASSERT_EQ(title(), "Brell was interrupted while changing a setting");
    EXPECT_TRUE(words(*sheet()).contains("Show drives on the desktop\nOn, back to not set"));
    press(*sheet(), "For experts");
    EXPECT_TRUE(words(*sheet()).contains("com.apple.finder ShowHardDrivesOnDesktop: back to absent"));
    EXPECT_TRUE(
        words(*sheet()).contains("The entries stay in the journal and Brell asks again at the next launch."));
    EXPECT_EQ(defaultButton(*sheet())->text(), "Later");

    const auto before = everythingIn(folder.path);
    type(sheet(), Qt::Key_Escape);
    EXPECT_FALSE(sheet());
    EXPECT_TRUE(model->state().recoveryDeferred);
    EXPECT_EQ(everythingIn(folder.path), before);
    EXPECT_TRUE(button(window->strip(), "Restore").isVisible());

    openWindow();
    ASSERT_EQ(title(), "Brell was interrupted while changing a setting") << "the next launch asks again";
    press(*sheet(), "Restore");
    EXPECT_FALSE(sheet());
    EXPECT_TRUE(model->state().interrupted.empty());
    EXPECT_FALSE(words(window->strip()).contains("relaunch")) << "nothing had been written";
}

TEST_F(SheetsTest, DriftIsOverriddenOnlyWhereThatIsTheAnswer) {
    const PrefKey delay{"com.apple.dock", "autohide-delay"};
    const PrefKey expanded{std::string(globalDomain), "NSNavPanelExpandedStateForSaveMode"};
    openLivedIn();
    const StoredValue theirs = stored(delay);

    // Of several the others are restored, whatever is ticked: in one sheet.
    const Uuid drifted = model->state().drifted.front().entry.id;
    settled()->askUndoSince(drifted);
    EXPECT_TRUE(words(*sheet()).contains("Save panels open expanded\nNow On, back to not set"));
    EXPECT_TRUE(words(*sheet()).contains("Tick the ones to restore anyway"));
    EXPECT_FALSE(words(*sheet()).contains("Everything else")) << "only what came since";
    EXPECT_TRUE(words(*sheet()).contains("Now 0.5 and 0.2, back to 0.24 and not set"));
    EXPECT_FALSE(words(*sheet()).contains("com.apple.")) << "keys are behind a disclosure";
    auto* tick = sheet()->findChild<QCheckBox*>();
    EXPECT_FALSE(tick->isChecked());
    EXPECT_EQ(defaultButton(*sheet())->text(), "Cancel");
    const QAbstractButton& restore = button(*sheet(), "Restore 6");
    QTest::keyClick(tick, Qt::Key_Space);
    EXPECT_EQ(restore.text(), "Restore 7");
    QTest::keyClick(tick, Qt::Key_Space);
    press(*sheet(), "Restore 6");
    ASSERT_FALSE(sheet());
    EXPECT_EQ(stored(delay), theirs);
    EXPECT_EQ(stored(expanded), StoredValue::absent());

    // One alone takes one sheet and one click, from the journal and from the page, and nothing is ticked.
    settled()->askRestore(drifted);
    ASSERT_TRUE(sheet());
    EXPECT_EQ(sheet()->windowTitle(), "This setting was changed outside Brell");
    EXPECT_EQ(defaultButton(*sheet())->text(), "Cancel");
    type(sheet(), Qt::Key_Return);
    ASSERT_FALSE(sheet());
    settled()->turnOff("dock.autohide_instant");
    EXPECT_FALSE(sheet()->findChild<QCheckBox*>());
    type(sheet(), Qt::Key_Escape);
    settled()->askRestore(drifted);
    press(*sheet(), "Restore");
    EXPECT_FALSE(sheet());
    EXPECT_NE(stored(delay), theirs);
    EXPECT_TRUE(model->state().drifted.empty());
}

TEST_F(SheetsTest, OneSheetAtATimeTheMostImportantFirst) {
    openLivedIn();
    settled()->askPreset(Presets::shipped().front());
    const QPointer<Sheet> first = sheet();
    settled()->askPreset(Presets::shipped().back());
    EXPECT_FALSE(first) << "another request, another sheet";
    EXPECT_TRUE(sheet()->windowTitle().contains(qt(Presets::shipped().back().name)));

    settled()->askRestoreAll();
    EXPECT_EQ(title(), "Restore everything?");
    EXPECT_TRUE(words(*sheet()).contains("Everything else Brell changed is restored."));
    settled()->turnOff("dock.autohide_instant");
    EXPECT_EQ(title(), "This setting was changed outside Brell");
    for (int more = 0; more < 3; ++more) {
        QList<Sheet*> open;
        for (Sheet* one : window->findChildren<Sheet*>())
            if (one->isVisible()) open.append(one);
        EXPECT_EQ(open, QList<Sheet*>{sheet()});
        type(sheet(), Qt::Key_Escape);
    }
    EXPECT_FALSE(sheet());
}

TEST_F(SheetsTest, APresetSaysWhatItWouldDoAndWhatItDid) {
    openLivedIn();
    const Preset preset{"mixed",
                        "Mixed",
                        "",
                        {"finder.status_bar", "finder.show_extensions", "dock.autohide_instant",
                         "anim.no_window_animation", "finder.from_tomorrow"}};
    settled()->askPreset(preset);
    const QString plan = words(*sheet());
    for (const char* part :
         {"1 of 3 settings would change.", "com.apple.finder ShowStatusBar from", "Already so",
          "Would be refused: Show the hidden Dock instantly already has an active change",
          "never applied by a preset: No window open and close animation.",
          "does not know them: finder.from_tomorrow."})
        EXPECT_TRUE(plan.contains(part)) << part << " is not in\n" << plan.toStdString();
    press(*sheet(), "Apply");
    ASSERT_EQ(title(), "What the preset came to");
    EXPECT_TRUE(words(*sheet()).startsWith("What the preset came to"));
    EXPECT_TRUE(words(*sheet()).contains("1 of 2 changes were made; 1 was refused.\n\nShow the hidden Dock"));
    type(sheet(), Qt::Key_Return);
    EXPECT_FALSE(sheet()) << "it was read";

    model->askPreset({"nothing", "Nothing", "", {"finder.show_extensions"}});
    settle();
    EXPECT_FALSE(button(*sheet(), "Apply").isEnabled());
}

// One line for what stands, the most urgent first, one for what passes.
TEST_F(SheetsTest, TheStripTellsWhatConcernsNoPageAlone) {
    openWindow();
    Strip& strip = window->strip();
    const int height = strip.height();
    settled()->apply("text.no_autocapitalize");
    settled()->apply("dock.no_bounce");
    EXPECT_TRUE(words(strip).contains("The Dock waits for a relaunch: 1 change"));
    settled()->apply("finder.status_bar");
    EXPECT_TRUE(words(strip).contains("2 apps wait for a relaunch: 2 changes"));
    press(strip, "Relaunch...");
    ASSERT_EQ(title(), "Relaunch the Dock and Finder?");
    EXPECT_TRUE(words(*sheet()).contains("No bouncing when apps open"));
    QTest::keyClick(sheet(), Qt::Key_Escape);

    // What was dismissed stays away, and what comes next is told even in the same words.
    for (const char* tweakID : {"dock.no_bounce", "text.no_autocapitalize"}) {
        settled()->turnOff(tweakID);
        EXPECT_TRUE(words(strip).contains("1 of 1 key is exactly as before.")) << tweakID;
        press(strip, "Dismiss: What was done");
        EXPECT_FALSE(words(strip).contains("exactly")) << tweakID;
    }

    settled()->applyChoice("dock.size", std::string(300, 'x'));
    EXPECT_TRUE(words(strip).startsWith("Brell could not do that: Icon size has no choice xxx"));
    EXPECT_FALSE(words(strip).contains("wait")) << "the most urgent first";
    press(strip, "Brell could not do that: all of it");
    Sheet* whole = window->findChild<Sheet*>();
    ASSERT_TRUE(whole && whole->isVisible());
    EXPECT_TRUE(words(*whole).contains("Icon size has no choice " + QString(300, 'x') + "."));
    whole->close();
    press(strip, "1 more");
    EXPECT_TRUE(words(strip).contains("waits for a relaunch"));
    press(strip, "1 more");
    press(strip, "Dismiss: Brell could not do that");
    EXPECT_FALSE(model->state().errorMessage);
    EXPECT_EQ(strip.height(), height);
}

TEST_F(SheetsTest, ButtonsOfTheStripThatHaveNoRoomAreInAMenu) {
    openLivedIn();
    window->resize(window->minimumSize());
    setContents(*options.journalDirectory / "journal.json", "damaged");
    settled()->refreshAll();
    EXPECT_TRUE(words(window->strip()).startsWith("The change journal")) << "some words have room";
    EXPECT_TRUE(button(window->strip(), "Rebuild from History...").isEnabled());
    press(window->strip(), "The change journal: more");
    auto* others = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(others);
    ASSERT_EQ(others->actions().back()->text(), "Show Restore Script");
    others->actions().back()->trigger();
    others->close();
    settle();
    EXPECT_TRUE(opened<QDialog>().findChild<QPlainTextEdit*>());
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

TEST_F(SheetsTest, ASheetHangsFromItsWindowAlsoWhenThatIsPlacedLater) {
    haveAPast();
    openWindow();
    ASSERT_TRUE(sheet());
    window->move(300, 200);
    settle();
    EXPECT_TRUE(window->geometry().contains(sheet()->geometry()));
}

}  // namespace
