#include <gtest/gtest.h>

#include <QCheckBox>
#include <QClipboard>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>

#include "CorvaneBrell/Model/TerminalCommands.h"
#include "CorvaneBrell/Window/ChangeRow.h"
#include "CorvaneBrell/Window/ChoiceBox.h"
#include "CorvaneBrell/Window/DayText.h"
#include "CorvaneBrell/Window/HistoryRow.h"
#include "CorvaneBrell/Window/LoginItemView.h"
#include "CorvaneBrell/Window/PrivacyPage.h"
#include "CorvaneBrell/Window/Sheet.h"
#include "CorvaneBrell/Window/SpotlightPage.h"
#include "CorvaneBrell/Window/Switch.h"
#include "Tests/CorvaneBrell/Window/WindowFixture.h"

namespace brell::testing {

namespace {

const PrefKey autohideDelay{"com.apple.dock", "autohide-delay"};

class PagesTest : public WindowTest {
protected:
    // Opens a window with a past on this page.
    void openOn(Screen screen) {
        openLivedIn();
        go(screen);
    }

    const QWidget& page() const { return *window->currentPage(); }

    // What is visible of a kind, from top to bottom.
    template <class Widget>
    std::vector<Widget*> inOrder() const {
        auto widgets = visible<Widget>(page());
        std::sort(widgets.begin(), widgets.end(), [&](const QWidget* one, const QWidget* other) {
            return one->mapTo(&page(), QPoint()).y() < other->mapTo(&page(), QPoint()).y();
        });
        return widgets;
    }

    void press(const QString& text) { WindowTest::press(page(), text); }

    LoginItemView& agent(const std::string& label) {
        for (const LoginItemRow& row : model->state().loginItems)
            if (row.record && row.record->label() == label)
                if (auto* view = page().findChild<LoginItemView*>(qt(row.id))) return *view;
        throw std::runtime_error("no row for " + label);
    }

    template <class Dialog>
    Dialog& opened() {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (auto* dialog = qobject_cast<Dialog*>(widget); dialog && dialog->isVisible()) return *dialog;
        throw std::runtime_error("no such dialog is open");
    }
};

// From a changed row: by the arrow, which asks nothing where nobody else's value would go, and by the list.
TEST_F(PagesTest, TheWayBackIsOneClickAndTheListsOwnDefaultIsNotIt) {
    const PrefKey size{"com.apple.dock", "tilesize"};
    openOn(Screen::dock);
    auto& list = static_cast<ChoiceBox&>(*row("dock.size").control());
    const auto pick = [&](const QString& text) {
        const int place = list.findText(text);
        EXPECT_GE(place, 0) << utf8(text);
        list.setCurrentIndex(place);
        emit list.activated(place);
        settle();
    };
    ASSERT_EQ(stored(size), StoredValue(36));
    pick("As before Brell (41)");
    EXPECT_EQ(stored(size), StoredValue(41));
    EXPECT_EQ(list.value(), "Another value");
    EXPECT_LT(list.findText("As before Brell (41)"), 0) << "no change of ours is active";

    pick("macOS default");
    EXPECT_EQ(stored(size), StoredValue::absent());
    QToolButton& wayBack = *row("dock.size").wayBack();
    EXPECT_TRUE(words(row("dock.size")).contains("Reset by Brell"));
    window->activateWindow();
    wayBack.setFocus();
    press("Back to 41: Icon size");
    EXPECT_EQ(stored(size), StoredValue(41));
    EXPECT_FALSE(wayBack.isVisible());
    EXPECT_EQ(QApplication::focusWidget(), &list) << "which has taken its place";

    press(row("dock.autohide_instant").wayBack()->accessibleName());
    EXPECT_TRUE(model->state().driftRequest) << "somebody else's value would go";
    model->cancelDrift();
}

TEST_F(PagesTest, LoginItemsStandInTheirGroupsWithASwitchOnlyWhereItCanBeUsed) {
    openOn(Screen::loginItems);
    settled()->askTaskList();
    settled()->confirmTaskList();
    const auto views = inOrder<LoginItemView>();
    ASSERT_EQ(views.size(), model->state().loginItems.size());
    std::vector<LoginItemRow> expected = model->state().loginItems;
    std::stable_partition(expected.begin(), expected.end(), [&](const LoginItemRow& row) {
        return row.badge == LoginItemBadge::toggleable &&
               !model->state().switchRefusals.contains(row.record->id());
    });
    EXPECT_EQ(words(page()).count("Brell does not turn these off"), 1);
    for (std::size_t i = 0; i < views.size(); ++i) {
        const LoginItemRow& row = expected[i];
        EXPECT_EQ(utf8(views[i]->objectName()), row.id) << "in the model's order";
        const auto* toggle = views[i]->findChild<Switch*>();
        ASSERT_EQ(toggle != nullptr, row.badge == LoginItemBadge::toggleable) << row.id;
        if (!toggle) {
            EXPECT_TRUE(words(*views[i]).contains(row.isOn ? "On" : "Off")) << row.id;
            continue;
        }
        EXPECT_EQ(toggle->isChecked(), row.isOn) << row.id;
        EXPECT_EQ(utf8(toggle->accessibleName()), row.title);
    }
    for (const LoginItemBadge badge :
         {LoginItemBadge::toggleable, LoginItemBadge::adminOnly, LoginItemBadge::appManaged})
        EXPECT_EQ(words(page()).count(qt(text(badge))), 1);

    EXPECT_TRUE(words(agent("com.orrerylabs.telemetry")).contains("keeps crashing and restarting"));
    EXPECT_TRUE(words(agent("com.halverson.duskwatch.menu")).contains("not allowed in System Settings"));
    EXPECT_TRUE(words(agent("com.google.keystone.agent")).contains("Risk: medium"));
    LoginItemView& refused = agent("homebrew.mxcl.postgresql@16");
    EXPECT_FALSE(refused.findChild<Switch*>()->isEnabled());
    EXPECT_TRUE(words(refused).contains("contains characters Brell does not pass to launchctl."));
}

TEST_F(PagesTest, AnAgentsSwitchMovesOnlyWhenTheAgentHasBeenSwitched) {
    openOn(Screen::loginItems);
    const std::string label = "com.lumenfold.sync";
    LoginItemView& view = agent(label);
    view.setOpen(true);
    EXPECT_FALSE(words(*view.details()).isEmpty());
    auto* toggle = view.findChild<Switch*>();
    toggle->setFocus();
    type(toggle, Qt::Key_Space);
    EXPECT_TRUE(toggle->isChecked());
    ASSERT_TRUE(model->state().agentConfirm);
    settled()->cancelAgents();
    EXPECT_TRUE(toggle->isChecked());

    QTest::mouseClick(toggle, Qt::LeftButton);
    settle();
    model->confirmAgents();
    EXPECT_TRUE(toggle->isChecked()) << "nothing has changed yet";
    settle();
    EXPECT_FALSE(toggle->isChecked());
    EXPECT_EQ(&agent(label), &view) << "the row is the same";
    EXPECT_TRUE(view.isOpen());
    EXPECT_TRUE(words(view).contains("Off by Brell"));

    ASSERT_TRUE(sample.openTools()->run(AllowedCommand::launchctlEnable("gui/501", label)).succeeded());
    settled()->refreshShown();
    EXPECT_TRUE(words(view).contains("Changed outside Brell")) << "its app has turned it on again";
    EXPECT_FALSE(words(view).contains("n by Brell"));
    EXPECT_TRUE(toggle->isChecked());
    EXPECT_FALSE(toggle->isEnabled()) << "the switch would be refused";
    EXPECT_TRUE(words(view).contains("Put it back first"));

    press("Back to on: Lumenfold Sync");
    ASSERT_TRUE(model->state().restoreRequest);
    settled()->confirmRestore();
    EXPECT_TRUE(toggle->isEnabled());
    EXPECT_TRUE(toggle->isChecked());
    EXPECT_FALSE(words(view).contains("by Brell"));
}

TEST_F(PagesTest, TheFilterFindsByNameLabelAndAppAndSaysWhenNothingDoes) {
    openOn(Screen::loginItems);
    auto* filter = page().findChild<QLineEdit*>();
    const auto found = [&](const QString& typed) {
        filter->setText(typed);
        settle();
        return visible<LoginItemView>(page()).size();
    };
    const std::size_t all = found("");
    EXPECT_EQ(found("KEYSTONE"), 1);
    EXPECT_EQ(found("crash"), 1);
    EXPECT_EQ(found("spotify"), 1);
    EXPECT_LT(found("homebrew"), all);
    EXPECT_EQ(found("no such item"), 0);
    EXPECT_TRUE(words(page()).contains("No login item has “no such item”"));
    type(filter, Qt::Key_Escape);
    EXPECT_EQ(visible<LoginItemView>(page()).size(), all);
    EXPECT_EQ(found("no such item"), 0);
    press("Show All");
    EXPECT_EQ(visible<LoginItemView>(page()).size(), all);
    EXPECT_FALSE(words(page()).contains("No login item"));
}

TEST_F(PagesTest, TheTaskListIsReadAfterTheButtonThatSaysWhatItMayCost) {
    openOn(Screen::loginItems);
    const QString ask = "Read macOS's List of Background Items...";
    const auto items = [&] { return visible<LoginItemView>(page()).size(); };
    const std::size_t before = items();
    EXPECT_TRUE(words(page()).contains("may be missing here"));
    press(ask);
    EXPECT_TRUE(words(opened<Sheet>()).contains("macOS may ask for an administrator's password"));
    WindowTest::press(opened<Sheet>(), "Read the List");
    EXPECT_GT(items(), before);
    EXPECT_FALSE(words(page()).contains("may be missing here"));

    std::filesystem::remove(sample.systemRoot() / "private/var/db/background-tasks.txt");
    press("Refresh the login items");
    EXPECT_EQ(items(), before);
    EXPECT_TRUE(button(page(), ask).isEnabled()) << "macOS did not give it";
    model->askTaskList();
    model->confirmTaskList();
    window->refreshNow();
    EXPECT_TRUE(words(page()).contains("Waiting for macOS"));
    press("Cancel");
    EXPECT_FALSE(words(page()).contains("Waiting for macOS"));
}

TEST_F(PagesTest, WithoutItemsThePageSaysWhy) {
    for (const auto& folderOfJobs :
         {"Users/sam/Library/LaunchAgents", "Library/LaunchAgents", "Library/LaunchDaemons"})
        std::filesystem::remove_all(sample.systemRoot() / folderOfJobs);
    openWindow();
    model->show(Screen::loginItems);
    window->refreshNow();
    EXPECT_TRUE(words(page()).contains("The login items are being read."));
    settle();
    EXPECT_TRUE(words(page()).contains("Nothing was found in the folders of launchd"));
    EXPECT_TRUE(button(page(), "Read Again").isEnabled());
}

TEST_F(PagesTest, PrivacyCardsTellEverythingAndRememberTheDayOfTheReview) {
    openOn(Screen::privacy);
    EXPECT_EQ(visible<TweakRow>(page()).size(), 1);
    const auto cards = inOrder<PrivacyCardRow>();
    ASSERT_EQ(cards.size(), PrivacyChecklist::cards().size());
    for (std::size_t i = 0; i < cards.size(); ++i) {
        const PrivacyCard& card = PrivacyChecklist::cards()[i];
        for (const std::string_view said : {card.title, card.meaning, card.whoNeedsIt, card.whatToLookFor,
                                            std::string_view("Not reviewed yet")})
            EXPECT_TRUE(words(*cards[i]).contains(qt(said))) << said;
    }
    press("Mark as reviewed: Camera");
    const QString today = "Reviewed on " + dayText(systemNow());
    EXPECT_EQ(words(page()).count(today), 1);
    press("Open System Settings: Privacy & Security, then Camera");
    auto& message = opened<Sheet>();
    EXPECT_TRUE(words(message).contains("Privacy & Security, then Camera"));
    message.close();
}

TEST_F(PagesTest, EachVolumeSaysWhetherItIsIndexedOrWhatTheToolAnswered) {
    openOn(Screen::spotlight);
    const auto rows = inOrder<VolumeRow>();
    ASSERT_EQ(rows.size(), model->state().volumes.size());
    ASSERT_GT(rows.size(), 2);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const VolumeIndexStatus& volume = model->state().volumes[i];
        const QString state = !volume.indexing   ? "Not known"
                              : *volume.indexing ? "Indexing on"
                                                 : "Indexing off";
        EXPECT_TRUE(words(*rows[i]).contains(state)) << volume.volume;
        EXPECT_TRUE(words(*rows[i]).contains(qt(volume.volume)));
        EXPECT_EQ(words(*rows[i]).contains(qt(volume.raw)), !volume.indexing) << volume.volume;
    }
}

TEST_F(PagesTest, TheJournalShowsEveryActiveChangeOnceNewestFirst) {
    openOn(Screen::journal);
    std::vector<ChangeRow*> active = inOrder<ChangeRow>();
    EXPECT_EQ(active.size(), model->changedCount(Screen::journal));
    const ChangeRow* drifted = active.front();  // which stand apart, at the top
    active.erase(active.begin());
    ASSERT_TRUE(drifted->findChild<QCheckBox*>());
    std::vector<QString> expected, shown;
    for (const JournalEntry& entry : model->state().entries)
        if (entry.isActive() && entry.id != drifted->entryID()) expected.push_back(qt(entry.id.text()));
    for (const ChangeRow* row : active) shown.push_back(row->objectName());
    EXPECT_EQ(shown, expected);

    EXPECT_TRUE(words(*active.front()).contains("Interrupted before it was finished."));
    EXPECT_EQ(words(page()).count("Interrupted before"), 1);
    EXPECT_TRUE(words(*active.back()).contains("this Mac now runs 26.1.0."));
    EXPECT_TRUE(words(*active.back()).contains("On, back to not set"));
    EXPECT_TRUE(words(page()).contains("Small, back to 41"));
    EXPECT_TRUE(words(page()).contains("Turned off, back to on"));
    EXPECT_TRUE(words(*drifted).contains("Now 0.5, 0.2. Brell wrote On; before that it was 0.24, not set."));
    EXPECT_FALSE(words(page()).contains("com.apple.dock")) << "keys are in the details";
    active.back()->setOpen(true);
    EXPECT_TRUE(words(*active.back()).contains("com.apple.finder _FXSortFoldersFirst: true; back to absent"));

    press("More for Save panels open expanded");
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu);
    menu->actions().front()->trigger();
    menu->close();
    settle();
    ASSERT_TRUE(model->state().restoreRequest);
    EXPECT_EQ(model->state().restoreRequest->entries.size(), 2);
    settled()->confirmRestore();
    EXPECT_EQ(visible<ChangeRow>(page()).size(), active.size() - 1);
    EXPECT_TRUE(words(window->strip()).contains("5 of 5 keys are exactly as before."));
}

TEST_F(PagesTest, WhatOthersResetIsAppliedAgainWithItsFirstOriginal) {
    openOn(Screen::journal);
    EXPECT_FALSE(button(page(), "Apply Again").isEnabled()) << "nothing is ticked";
    visible<QCheckBox>(page()).front()->setFocus();
    QTest::keyClick(visible<QCheckBox>(page()).front(), Qt::Key_Space);
    settled()->refreshAll();
    EXPECT_TRUE(visible<QCheckBox>(page()).front()->isChecked()) << "a refresh leaves the tick";
    press("Apply 1 Again");
    EXPECT_TRUE(visible<QCheckBox>(page()).empty());
    EXPECT_EQ(stored(autohideDelay), StoredValue(0.0));
    EXPECT_TRUE(model->state().pendingRelaunches.contains("dock.autohide_instant"))
        << "it may hold what the other tool wrote";
    EXPECT_EQ(utf8(inOrder<ChangeRow>().front()->objectName()), model->state().entries.front().id.text());
}

TEST_F(PagesTest, AnUpdateOfMacOSLeadsToWhatNoLongerHolds) {
    openLivedIn();
    window.reset();
    model->ownPreferences().keepMacOS({15, 7, 0});
    openWindow();
    settled()->recover();
    const auto isTold = [&] {
        return words(window->strip()).contains("macOS was updated from 15.7 to 26.1");
    };
    ASSERT_TRUE(isTold()) << utf8(words(window->strip()));
    WindowTest::press(window->strip(), "Review...");
    EXPECT_EQ(model->state().screen, Screen::journal);
    WindowTest::press(window->strip(), "Nothing to Do");
    EXPECT_FALSE(isTold());
    openWindow();
    EXPECT_FALSE(model->state().macOSUpdate) << "it was kept when the window was closed";
}

TEST_F(PagesTest, WhatOthersSetIsKeptAndLeavesTheList) {
    openOn(Screen::journal);
    const StoredValue theirs = stored(autohideDelay);
    const std::size_t active = model->changedCount(Screen::journal);
    visible<QCheckBox>(page()).front()->click();
    press("Keep Theirs for 1");
    EXPECT_TRUE(visible<QCheckBox>(page()).empty());
    EXPECT_EQ(model->changedCount(Screen::journal), active - 1);
    EXPECT_EQ(stored(autohideDelay), theirs);
    EXPECT_TRUE(words(page()).contains("because another value was kept"));
}

TEST_F(PagesTest, TheHistoryIsToldByDayAsFarBackAsIsWanted) {
    openOn(Screen::journal);
    const auto told = [&] {
        QStringList lines;
        for (const HistoryRow* row : inOrder<HistoryRow>()) lines << words(*row).replace('\n', ' ');
        return lines.join('\n');
    };
    const QString everything = told();
    EXPECT_EQ(everything.count("Interrupted"), 1) << "the beginnings of finished changes are not told";
    EXPECT_EQ(everything.count("Magnify icons under the pointer · Restored"), 1);
    EXPECT_EQ(everything.count("Magnify icons under the pointer · Applied"), 1);
    EXPECT_EQ(everything.count(dayText(model->state().history->front().at)), 1);

    auto* range = page().findChild<ChoiceBox*>();
    range->setCurrentIndex(0);
    emit range->activated(0);
    settle();
    EXPECT_FALSE(told().isEmpty());
    EXPECT_TRUE(everything.startsWith(told()));
    EXPECT_FALSE(told().contains("Magnify"));
}

TEST_F(PagesTest, ReportAndScriptLeaveAsFilesToReadOrThroughTheClipboard) {
    openOn(Screen::journal);
    const auto saveAs = [&](const QString& text, const QString& proposed) {
        press(text);
        auto& dialog = opened<QFileDialog>();
        EXPECT_TRUE(dialog.selectedFiles().front().endsWith("/" + proposed));
        const std::filesystem::path file = folder.path / utf8(proposed);
        emit dialog.fileSelected(qt(file.string()));
        dialog.close();
        settle();
        return contentsOf(file);
    };
    EXPECT_TRUE(saveAs("Save Report…", "corvane-brell-report.md").starts_with("# What changed on this Mac"));
    EXPECT_TRUE(saveAs("Save Restore Script…", "corvane-brell-restore.sh").starts_with("#!"));

    press("Show Restore Script");
    auto& script = opened<QDialog>();
    EXPECT_TRUE(script.findChild<QPlainTextEdit*>()->isReadOnly());
    EXPECT_TRUE(script.findChild<QPlainTextEdit*>()->toPlainText().contains("_FXSortFoldersFirst"));
    WindowTest::press(script, "Copy Command: restore script");
    EXPECT_EQ(QApplication::clipboard()->text(),
              qt("sh '" + (*options.journalDirectory / "restore.sh").string() + "'"));
    script.close();

    press("Copy as Terminal Command: all active changes");
    const QString copied = QApplication::clipboard()->text();
    EXPECT_LT(copied.indexOf("_FXSortFoldersFirst"), copied.indexOf("NSNavPanelExpandedStateForSaveMode"))
        << "oldest first, as they were made";
    EXPECT_GE(copied.indexOf("_FXSortFoldersFirst"), 0);
}

TEST_F(PagesTest, AnEmptyJournalSaysThatNothingWasChanged) {
    openWindow();
    go(Screen::journal);
    EXPECT_TRUE(words(page()).contains("Brell has changed nothing yet."));
    EXPECT_FALSE(button(page(), "Restore All").isEnabled());
    settled()->apply("dock.autohide");
    EXPECT_TRUE(words(page()).contains("1 active change."));
    press("Restore Hide the Dock automatically");
    settled()->confirmRestore();
    EXPECT_TRUE(words(page()).contains("every setting Brell changed is back to what it was."));
}

}  // namespace

}  // namespace brell::testing
