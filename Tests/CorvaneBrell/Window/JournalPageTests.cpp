
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QClipboard>
#include <QFileDialog>
#include <QMenu>
#include <QPlainTextEdit>

#include "CorvaneBrell/Window/ChangeRow.h"
#include "CorvaneBrell/Window/ChoiceBox.h"
#include "CorvaneBrell/Window/DayText.h"
#include "CorvaneBrell/Window/HistoryRow.h"
#include "Tests/CorvaneBrell/Window/WindowFixture.h"

namespace brell::testing {

namespace {

const PrefKey autohideDelay{"com.apple.dock", "autohide-delay"};

using JournalPageTest = WindowTest;

}  // namespace

TEST_F(JournalPageTest, TheJournalShowsEveryActiveChangeOnceNewestFirst) {
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
    EXPECT_TRUE(
        words(*drifted).contains("Now 0.5 and 0.2. Brell wrote On; before that it was 0.24 and not set."));
    EXPECT_TRUE(words(page()).contains("Zoom: turned off")) << "in the history, too";
    EXPECT_FALSE(words(page()).contains("com.apple.dock")) << "keys are in the details";
    EXPECT_FALSE(words(page()).contains("us.zoom.updater")) << "and labels";
    press("Details of Zoom");
    EXPECT_TRUE(words(page()).contains("us.zoom.updater: off; back to on"));
    active.back()->setOpen(true);
    EXPECT_TRUE(words(*active.back()).contains("com.apple.finder _FXSortFoldersFirst: true; back to absent"));

    press("More for Save panels open expanded");
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu);
    menu->actions().front()->trigger();
    menu->close();
    settle();
    ASSERT_TRUE(model->state().restoreRequest);
    EXPECT_EQ(model->state().restoreRequest->changes.others.size(), 2);
    settled()->confirmRestore();
    EXPECT_EQ(visible<ChangeRow>(page()).size(), active.size() - 1);
    EXPECT_TRUE(words(window->strip()).contains("5 of 5 keys are exactly as before."));
}

TEST_F(JournalPageTest, WhatOthersResetIsAppliedAgainWithItsFirstOriginal) {
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

TEST_F(JournalPageTest, AnUpdateOfMacOSLeadsToWhatNoLongerHolds) {
    openLivedIn();
    window.reset();
    model->ownPreferences().keepMacOS({15, 7, 0});
    openWindow();
    settled()->recover();
    const auto isTold = [&] {
        return words(window->strip()).contains("macOS was updated from 15.7 to 26.1");
    };
    ASSERT_TRUE(isTold()) << utf8(words(window->strip()));
    press(window->strip(), "Review...");
    EXPECT_EQ(model->state().screen, Screen::journal);
    press(window->strip(), "Nothing to Do");
    EXPECT_FALSE(isTold());
    openWindow();
    EXPECT_FALSE(model->state().macOSUpdate) << "it was kept when the window was closed";
}

TEST_F(JournalPageTest, WhatOthersSetIsKeptAndLeavesTheList) {
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

TEST_F(JournalPageTest, TheHistoryIsToldByDayAsFarBackAsIsWanted) {
    openOn(Screen::journal);
    const auto told = [&] {
        QStringList lines;
        for (const HistoryRow* row : inOrder<HistoryRow>()) lines << words(*row).replace('\n', ' ');
        return lines.join('\n');
    };
    const QString everything = told();
    EXPECT_EQ(everything.count("interrupted"), 1) << "the beginnings of finished changes are not told";
    EXPECT_EQ(everything.count("Magnify icons under the pointer: back to"), 1);
    EXPECT_EQ(everything.count("Magnify icons under the pointer: On, was not set"), 1);
    EXPECT_EQ(everything.count(dayText(model->state().history->front().at)), 1);

    auto* range = page().findChild<ChoiceBox*>();
    range->setCurrentIndex(0);
    emit range->activated(0);
    settle();
    EXPECT_FALSE(told().isEmpty());
    EXPECT_TRUE(everything.startsWith(told()));
    EXPECT_FALSE(told().contains("Magnify"));
}

TEST_F(JournalPageTest, ReportAndScriptLeaveAsFilesToReadOrThroughTheClipboard) {
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
    press(script, "Copy Command: restore script");
    EXPECT_EQ(QApplication::clipboard()->text(),
              qt("sh '" + (*options.journalDirectory / "restore.sh").string() + "'"));
    script.close();

    press("Copy as Terminal Command: all active changes");
    const QString copied = QApplication::clipboard()->text();
    EXPECT_LT(copied.indexOf("_FXSortFoldersFirst"), copied.indexOf("NSNavPanelExpandedStateForSaveMode"))
        << "oldest first, as they were made";
    EXPECT_GE(copied.indexOf("_FXSortFoldersFirst"), 0);
}

}  // namespace brell::testing
