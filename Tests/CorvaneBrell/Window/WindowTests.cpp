#include <QAction>
#include <QScrollBar>

#include "CorvaneBrell/Window/SearchPage.h"
#include "Tests/CorvaneBrell/Window/WindowFixture.h"

namespace brell::testing {

namespace {

QAction* menuAction(const MainWindow& window, const QString& beginning) {
    for (QAction* action : window.findChildren<QAction*>())
        if (action->text().startsWith(beginning)) return action;
    return nullptr;
}

class WindowClosingTest : public WindowTest {
protected:
    bool closes() {
        window->close();
        return !window->isVisible();
    }
};

QString focusName() {
    return QApplication::focusWidget() ? QApplication::focusWidget()->accessibleName() : QString();
}

}  // namespace

TEST_F(WindowTest, OnlyThePageThatIsShownIsBuiltAndNothingIsWritten) {
    const auto before = everythingIn(folder.path);
    openWindow();
    EXPECT_EQ(window->pagesBuilt(), 1);
    EXPECT_TRUE(qobject_cast<TweakPage*>(window->currentPage()));
    for (const Screen screen : allCases<Screen>()) go(screen);
    EXPECT_EQ(window->pagesBuilt(), enumTexts<Screen>.size());
    // The login items that were seen are kept, and the sample's launchd locks its own file.
    const Texts ofTheVisit{"mac/Users/sam/Library/Preferences/com.corvane.brell.plist",
                           "mac/private/var/db/.launchd.lock"};
    EXPECT_EQ(changesIn(folder.path, before), ofTheVisit) << "looking changes nothing else";
}

TEST_F(WindowTest, TheHelpMenuLeadsToTheLicensesThatTheBundleHolds) {
    EXPECT_FALSE(menuAction(openWindow(), "Licenses"));
    const fs::path resources = utf8(QApplication::applicationDirPath()) + "/../Resources";
    setContents(resources / "Licenses.txt", "as others say");
    EXPECT_TRUE(menuAction(openWindow(), "Licenses"));
    fs::remove_all(resources);
}

TEST_F(WindowTest, TheEditMenuServesTheFieldThatHasTheFocus) {
    openWindow().activateWindow();
    QLineEdit& search = window->sidebar().search();
    search.setFocus();
    search.setText("dock");
    for (const char* item : {"Select All", "Cut", "Paste", "Paste", "Select All", "Copy", "Paste"})
        menuAction(*window, item)->trigger();
    EXPECT_EQ(search.text(), "dockdock");
    window->sidebar().pages().setFocus();
    menuAction(*window, "Cut")->trigger();
    EXPECT_EQ(search.text(), "dockdock");
}

// The whole way of a first user: found by other words, switched by the keyboard, undone, restored.
TEST_F(WindowTest, AStoryFromFirstLaunchToRestoreAllLeavesThePreferencesAsTheyWere) {
    const auto before = preferences();
    openWindow();
    window->activateWindow();

    QTest::keyClick(window.get(), Qt::Key_F, Qt::ControlModifier);
    ASSERT_EQ(QApplication::focusWidget(), &window->sidebar().search());
    QTest::keyClicks(&window->sidebar().search(), "dotfiles");
    settle();
    auto* results = qobject_cast<SearchPage*>(window->currentPage());
    ASSERT_TRUE(results);
    EXPECT_EQ(results->list().shown().at(0)->id, "finder.show_hidden");
    expectWords(row("finder.show_hidden"), {"Finder · Medium risk · Relaunches Finder · also “dotfiles”"});
    EXPECT_TRUE(window->sidebar().pages().property("marksNone").toBool())
        << "the results are no page of the list";

    QTest::keyClick(&window->sidebar().search(), Qt::Key_Down);
    for (int tabs = 0; tabs < 4 && focusName() != "Show hidden files"; ++tabs)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    ASSERT_EQ(focusName(), "Show hidden files");
    type(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_EQ(stored(showHidden), StoredValue(true));
    EXPECT_EQ(focusName(), "Show hidden files") << "the focus stays where the user works";
    EXPECT_TRUE(static_cast<Switch*>(QApplication::focusWidget())->isChecked());

    type(&window->sidebar().search(), Qt::Key_Escape);
    EXPECT_TRUE(qobject_cast<TweakPage*>(window->currentPage()));
    type(window.get(), Qt::Key_2, Qt::ControlModifier);
    ASSERT_EQ(model->state().screen, Screen::dock);
    EXPECT_TRUE(window->currentPage()->isAncestorOf(QApplication::focusWidget()))
        << "what was chosen has the focus";
    click(*row("dock.autohide").control());
    EXPECT_EQ(stored(autohide), StoredValue(true));
    EXPECT_EQ(menuAction(*window, "Undo")->text(), "Undo Hide the Dock automatically");
    type(window.get(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(stored(autohide), StoredValue(false));
    click(*row("dock.autohide").control());

    menuAction(*window, "Restore All")->trigger();
    settle();
    press(*sheet(), "Restore 2");
    EXPECT_FALSE(sheet());
    expectWords(window->strip(), {"2 changes are back: 2 of 2 keys are exactly as before."});
    EXPECT_EQ(preferences(), before);
    EXPECT_FALSE(menuAction(*window, "Restore All")->isEnabled()) << "nothing is left to restore";
}

TEST_F(WindowTest, EscapeAndTheListOfPagesLeadOutOfASearchFromAnywhere) {
    openWindow();
    go(Screen::dock);
    window->resize(820, 560);
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    settle();
    QScrollBar* bar = window->currentPage()->scrollArea()->verticalScrollBar();
    bar->setValue(bar->maximum() / 2);
    const int place = bar->value();
    ASSERT_GT(place, 0);
    QLineEdit& field = window->sidebar().search();
    const auto isSearching = [&] { return qobject_cast<SearchPage*>(window->currentPage()) != nullptr; };
    for (const bool fromTheField : {true, false}) {
        field.setFocus();
        QTest::keyClicks(&field, "hidden");
        if (!fromTheField) QTest::keyClick(&field, Qt::Key_Down);
        ASSERT_TRUE(isSearching());
        EXPECT_EQ(visible<Paragraph>(row("finder.show_hidden")).front()->marks(), QStringList{"hidden"});
        type(QApplication::focusWidget(), Qt::Key_Escape);
        EXPECT_FALSE(isSearching());
        EXPECT_EQ(window->currentPage()->scrollArea()->verticalScrollBar(), bar);
        EXPECT_EQ(bar->value(), place);
    }

    field.setFocus();
    QTest::keyClicks(&field, "hidden");
    ASSERT_TRUE(isSearching());
    window->sidebar().pages().setFocus();
    type(&window->sidebar().pages(), Qt::Key_Up);
    EXPECT_FALSE(isSearching());
    EXPECT_EQ(model->state().screen, Screen::finder);
    EXPECT_EQ(field.text(), "");
}

TEST_F(WindowTest, WhatStandsOnAPageIsFoundAndLedTo) {
    openWindow();
    window->resize(820, 560);
    search("record sound microphone");
    ASSERT_EQ(visible<PlaceRow>().size(), 1);
    EXPECT_EQ(visible<Paragraph>(*visible<PlaceRow>().front()).front()->marks().front(), "record");
    press("Open Microphone on the page Privacy");
    const QWidget* focus = window->focusWidget();
    while (focus && !qobject_cast<const Row*>(focus)) focus = focus->parentWidget();
    const auto* led = qobject_cast<const Row*>(focus);
    ASSERT_TRUE(led && led->title() == "Microphone");
    const QWidget* viewport = window->currentPage()->scrollArea()->viewport();
    EXPECT_TRUE(viewport->rect().contains(led->mapTo(viewport, QPoint(0, 20))));
}

TEST_F(WindowTest, ALoginItemThatIsFoundIsSwitchedInTheResultsAsOnItsPage) {
    const std::string label = "com.spotify.client.startuphelper";
    openWindow();
    search("spotify");
    EXPECT_FALSE(model->state().loginItemsLoaded) << "nothing is read because somebody types";
    go(Screen::loginItems);
    go(Screen::finder);
    turnOnFromOutside(label);
    search("startuphelper spotify");
    ASSERT_EQ(visible<LoginItemView>().size(), 1);
    LoginItemView& found = *visible<LoginItemView>().front();
    Switch& toggle = *found.findChild<Switch*>();
    EXPECT_EQ(visible<Paragraph>(found).front()->marks(), (QStringList{"startuphelper", "spotify"}));
    EXPECT_TRUE(toggle.isChecked()) << "the results show what is so now";
    click(toggle);
    expectWords(*sheet(), {qt("Turn off " + label), "launchctl disable"});
    press(*sheet(), "Turn Off");
    EXPECT_FALSE(toggle.isChecked());
    expectWords(found, {"Off by Brell"});

    turnOnFromOutside(label);  // by its app
    emit qApp->applicationStateChanged(Qt::ApplicationActive);
    QTRY_VERIFY(words(found).contains("Put it back first"));
    expectWords(found, {"Changed outside Brell"});
    EXPECT_TRUE(toggle.isChecked());
    EXPECT_FALSE(toggle.isEnabled()) << "the switch would be refused";
    click(*found.wayBack());
    press(*sheet(), "Restore");
    EXPECT_TRUE(toggle.isEnabled() && toggle.isChecked());
    EXPECT_EQ(visible<LoginItemView>(), std::vector<LoginItemView*>{&found}) << "the row is the same";
}

TEST_F(WindowClosingTest, ClosingTheWindowLosesNothingThatWasAskedFor) {
    openWindow();
    model->apply("dock.autohide");
    model->apply("finder.show_hidden");
    EXPECT_FALSE(closes()) << "the changes are finished first";
    settle();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(stored(autohide), StoredValue(true));
    EXPECT_EQ(stored(showHidden), StoredValue(true));
    openWindow();
    EXPECT_EQ(pendingEffects(model->state().pendingRelaunches, model->catalog()),
              (std::set{EffectClass::dockRelaunch, EffectClass::finderRelaunch}));

    model->saveReport(folder.path / "report.md");
    model->askRelaunch();
    model->confirmRelaunch();
    EXPECT_FALSE(closes()) << "an app that was asked to quit is opened again, and the file is saved";
    QTRY_VERIFY_WITH_TIMEOUT(!window->isVisible(), 30'000);
    EXPECT_TRUE(pendingEffects(model->state().pendingRelaunches, model->catalog()).empty());
    EXPECT_TRUE(fs::exists(folder.path / "report.md"));

    openWindow();
    settled()->turnOff("dock.autohide");
    applications.setBehaviour("com.apple.dock", {std::nullopt, std::nullopt});
    model->askRelaunch();
    model->confirmRelaunch();
    EXPECT_FALSE(closes());
    EXPECT_TRUE(closes()) << "who asks twice does not wait for another app";
}

TEST_F(WindowClosingTest, AWindowThatIsToCloseStaysWhenWhatWasAskedForMeetsAQuestion) {
    openLivedIn();
    model->turnOff("dock.autohide_instant");
    window->close();
    settle();
    EXPECT_TRUE(window->isVisible());
    ASSERT_TRUE(model->state().driftRequest);
    model->cancelDrift();
    fs::remove(*options.journalDirectory / ".journal.lock");
    fs::create_directory(*options.journalDirectory / ".journal.lock");
    model->apply("shot.no_shadow");
    window->close();
    settle();
    EXPECT_TRUE(window->isVisible()) << "the failure is to be read";
    EXPECT_TRUE(model->state().errorMessage);
    EXPECT_TRUE(closes());
}

TEST_F(WindowTest, ChangedOnlyShowsExactlyTheActiveChangesAndTheCountsAgree) {
    openLivedIn();
    window->setChangedOnly(true);
    std::size_t rows = 0;
    for (const Screen screen : allCases<Screen>()) {
        go(screen);
        const auto* page = qobject_cast<TweakPage*>(window->currentPage());
        if (!page) continue;
        const std::size_t changed = model->changedCount(screen);
        EXPECT_EQ(page->list().shown().size(), changed);
        EXPECT_EQ(page->list().isVisible(), changed > 0);
        rows += changed;
        const QListWidgetItem* item = window->sidebar().pages().item(static_cast<int>(screen));
        EXPECT_EQ(item->data(Qt::AccessibleTextRole).toString().contains("active change"), changed > 0);
    }
    EXPECT_EQ(rows, model->changedTweaks().size());
    EXPECT_GT(rows, 4);
}

TEST_F(WindowTest, WhatOthersChangedIsSeenWhenTheWindowComesToTheFront) {
    openWindow();
    const auto* toggle = static_cast<Switch*>(row("finder.show_hidden").control());
    writeFromOutside(showHidden, true);
    emit qApp->applicationStateChanged(Qt::ApplicationInactive);
    emit qApp->applicationStateChanged(Qt::ApplicationActive);
    QTRY_VERIFY(toggle->isChecked());
}

TEST_F(WindowTest, SizeAndPageAreKeptForTheNextLaunch) {
    openWindow();
    window->resize(1003, 707);
    go(Screen::journal);
    openWindow();
    EXPECT_EQ(window->size(), QSize(1003, 707));
    EXPECT_EQ(model->state().screen, Screen::journal);
    options.openGroup = "dock";
    openWindow();
    EXPECT_EQ(model->state().screen, Screen::dock) << "what is asked for comes first";
}

}  // namespace brell::testing
