#include <QClipboard>

#include "CorvaneBrell/Window/ChangeRow.h"
#include "CorvaneBrell/Window/DayText.h"
#include "CorvaneBrell/Window/HistoryRow.h"
#include "Tests/CorvaneBrell/Window/WindowFixture.h"

namespace brell::testing {

using JournalPageTest = WindowTest;

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

    expectWords(*active.front(), {"Interrupted before it was finished."});
    EXPECT_EQ(words(page()).count("Interrupted before"), 1);
    expectWords(*drifted, {"Now 0.5 and 0.2. Brell wrote On; before that it was 0.24 and not set."});
    expectSample(page(), "page-of-the-journal");  // keys and labels are in the details
    press("Details of Zoom");
    expectWords(page(), {"us.zoom.updater: off; back to on"});
    active.back()->setOpen(true);
    expectSample(*active.back(), "row-of-another-version");

    press("More for Save panels open expanded");
    opened<QMenu>().actions().front()->trigger();
    opened<QMenu>().close();
    settle();
    ASSERT_TRUE(model->state().restoreRequest);
    EXPECT_EQ(model->state().restoreRequest->changes.others.size(), 2);
    settled()->confirmRestore();
    EXPECT_EQ(visible<ChangeRow>().size(), active.size() - 1);
    expectWords(window->strip(), {"5 of 5 keys are exactly as before."});
}

TEST_F(JournalPageTest, WhatOthersSetIsKeptOrAppliedAgainAndLeavesTheList) {
    openOn(Screen::journal);
    const StoredValue theirs = stored(autohideDelay);
    const std::size_t active = model->changedCount(Screen::journal);
    EXPECT_FALSE(button(page(), "Apply Again").isEnabled()) << "nothing is ticked";
    type(visible<QCheckBox>().front(), Qt::Key_Space);
    settled()->refreshAll();
    EXPECT_TRUE(visible<QCheckBox>().front()->isChecked()) << "a refresh leaves the tick";
    press("Apply 1 Again");
    EXPECT_TRUE(visible<QCheckBox>().empty());
    EXPECT_EQ(stored(autohideDelay), StoredValue(0.0));
    EXPECT_TRUE(model->state().pendingRelaunches.contains("dock.autohide_instant"))
        << "it may hold what the other tool wrote";
    EXPECT_EQ(utf8(inOrder<ChangeRow>().front()->objectName()), model->state().entries.front().id.text());

    writeFromOutside(autohideDelay, *theirs.value);
    settled()->refreshAll();
    visible<QCheckBox>().front()->click();
    press("Keep Theirs for 1");
    EXPECT_TRUE(visible<QCheckBox>().empty());
    EXPECT_EQ(model->changedCount(Screen::journal), active - 1);
    EXPECT_EQ(stored(autohideDelay), theirs);
    expectWords(page(), {"because another value was kept"});
}

TEST_F(JournalPageTest, WhatCannotBeAppliedAgainOrRestoredIsNotOffered) {
    openWindow();
    settled()->apply("dock.autohide");
    settled()->applyChoice("dock.size", "large");
    rewriteJournal(R"(1,/"preference"/s/"preference"/"launchAgent"/; s/"dock.size"/"dock.gone"/; )"
                   R"(s/"dock.autohide"/"agent:org.example.sync"/)");
    writeFromOutside({"com.apple.dock", "tilesize"}, 50);
    openWindow();
    go(Screen::journal);
    for (QCheckBox* box : visible<QCheckBox>()) box->click();
    EXPECT_TRUE(button(page(), "Keep Theirs for 1").isEnabled());
    EXPECT_TRUE(button(page(), "Keep 1 Unchanged").isEnabled());
    EXPECT_FALSE(button(page(), "Apply Again").isEnabled());
    EXPECT_FALSE(button(page(), "Restore agent:org.example.sync").isEnabled());
    expectWords(page(), {"restored or kept, but not applied again", "it can only be kept as it is",
                         "1 of them no longer in force, 1 of them cannot be put back."});
    writeFromOutside({"com.apple.dock", "tilesize"}, 64);
    settled()->refreshAll();
    expectWords(page(), {"restored, but not changed"});
    writeFromOutside({"com.apple.dock", "tilesize"}, 50);
    settled()->refreshAll();

    settled()->keepTheirs({model->state().drifted.front().entry.id});
    settled()->askRestoreAll();
    expectWords(*sheet(), {"None of this can be put back."});
}

TEST_F(JournalPageTest, AnInterruptedAgentWhoseUndoIsRefusedCanBeClosedThere) {
    openWindow();
    go(Screen::loginItems);
    settled()->askAgents({itemOf("com.lumenfold.sync").id}, false);
    settled()->confirmAgents();
    closeWindow();
    rewriteJournal(R"(s/"applied"/"capturing"/; s|"plistPath" : ".*/|"plistPath" : "/elsewhere/|)");
    openWindow();
    expectWords(*sheet(), {"none of these commands is run: /elsewhere/com.lumenfold.sync.plist is outside"});
    settled()->deferRecovery();
    go(Screen::journal);
    settled()->loadAgentDrift();
    settle();
    expectWords(page(), {"Cannot be put back", "sync.plist is outside your LaunchAgents folder."});
    for (const char* untrue : {"another tool changed", "Restoring puts"})
        EXPECT_FALSE(words(page()).contains(untrue));
    press(page(), "Restore Lumenfold Sync");
    expectWords(*sheet(), {"None of this can be put back.", "No command: /elsewhere"});
    type(sheet(), Qt::Key_Escape);
    visible<QCheckBox>().at(0)->click();
    press(page(), "Keep 1 Unchanged");
    EXPECT_EQ(settled()->changedCount(Screen::journal), 0u);
}

TEST_F(JournalPageTest, AnUpdateOfMacOSLeadsToWhatNoLongerHolds) {
    openLivedIn();
    window.reset();
    model->ownPreferences().keepMacOS({15, 7, 0});
    openWindow();
    settled()->recover({});
    const QString told = "macOS was updated from 15.7 to 26.1";
    expectWords(window->strip(), {told});
    press(window->strip(), "Review...");
    EXPECT_EQ(model->state().screen, Screen::journal);
    press(window->strip(), "Nothing to Do");
    EXPECT_FALSE(words(window->strip()).contains(told));
    openWindow();
    EXPECT_FALSE(model->state().macOSUpdate) << "it was kept when the window was closed";
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
    EXPECT_EQ(everything.count("Magnify icons under the pointer: "), 2);
    EXPECT_EQ(everything.count(dayText(model->state().history->front().at)), 1);

    pick(*page().findChild<ChoiceBox*>(), 0);
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
    EXPECT_TRUE(
        saveAs("Save Report...", "corvane-brell-report.md").starts_with("# What changed on this Mac"));
    EXPECT_TRUE(saveAs("Save Restore Script...", "corvane-brell-restore.sh").starts_with("#!"));

    press("Show Restore Script");
    auto& script = opened<QDialog>();
    EXPECT_TRUE(script.findChild<QPlainTextEdit*>()->isReadOnly());
    EXPECT_TRUE(script.findChild<QPlainTextEdit*>()->toPlainText().contains("_FXSortFoldersFirst"));
    press(script, "Copy Command: restore script");
    EXPECT_EQ(QApplication::clipboard()->text(),
              qt("sh " + shellWord(*options.journalDirectory / "restore.sh")));
    script.close();

    press("Copy as Terminal Command: all active changes");
    const QString copied = QApplication::clipboard()->text();
    EXPECT_LT(copied.indexOf("_FXSortFoldersFirst"), copied.indexOf("NSNavPanelExpandedStateForSaveMode"))
        << "oldest first, as they were made";
    EXPECT_GE(copied.indexOf("_FXSortFoldersFirst"), 0);
}

}  // namespace brell::testing
