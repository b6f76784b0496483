// A setting that cannot be changed says so and why, and nothing is claimed that is not known.

#include <gtest/gtest.h>

#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QToolButton>
#include <fstream>

#include "CorvaneBrell/Window/ChoiceBox.h"
#include "CorvaneBrell/Window/NoticeBar.h"
#include "CorvaneBrell/Window/PresetMenu.h"
#include "CorvaneBrell/Window/Switch.h"
#include "Tests/CorvaneBrell/Window/WindowFixture.h"

namespace brell::testing {

namespace {

class RefusedChangesTest : public WindowTest {
protected:
    void expectNothingCanBeChanged() {
        const QRegularExpression changing("^Restore(?! Script)|Apply|Mark as|^Undo|^Choose");
        for (QWidget* control : visible<QWidget>(*window->currentPage())) {
            const auto* row = qobject_cast<Row*>(control->parentWidget());
            const auto* button = qobject_cast<QPushButton*>(control);
            const bool changes = qobject_cast<Switch*>(control) ||
                                 (row && (row->wayBack() == control || qobject_cast<ChoiceBox*>(control))) ||
                                 (button && changing.match(button->text()).hasMatch());
            if (changes) {
                EXPECT_FALSE(control->isEnabled()) << nameOf(control);
            }
        }
    }
};

}  // namespace

TEST_F(RefusedChangesTest, WhatCannotBeChangedSaysWhyAndAnUndoIsThereExactlyWhileAChangeIsActive) {
    openLivedIn();
    int refused = 0, undoable = 0;
    onEveryPage([&] {
        for (TweakRow* tweak : visible<TweakRow>(*window->currentPage())) {
            const TweakRowState state = tweakRowState(*model, tweak->tweak());
            EXPECT_EQ(state.canChange || !state.reason.empty(), true) << tweak->tweak().id;
            bool reasonIsShown = state.reason.empty();
            const QToolButton* wayBack = tweak->wayBack();
            const bool restores = wayBack && wayBack->isVisible();
            for (const Paragraph* text : visible<Paragraph>(*tweak))
                reasonIsShown = reasonIsShown || text->text() == qt(state.reason);
            if (restores) {
                EXPECT_TRUE(
                    wayBack->accessibleName().startsWith("Back to " + qt(state.undo->leadsTo) + ": "));
                EXPECT_TRUE(wayBack->toolTip().contains("Back to "));
            }
            EXPECT_TRUE(reasonIsShown) << tweak->tweak().id;
            for (const char* expertsWord : {"absent", "com.apple.", "NSGlobalDomain"})
                EXPECT_FALSE(words(*tweak->details()).contains(expertsWord)) << tweak->tweak().id;
            EXPECT_EQ(restores, state.undo.has_value()) << tweak->tweak().id;
            refused += !state.canChange;
            undoable += restores;
        }
    });
    EXPECT_GE(refused, 3);
    EXPECT_GE(undoable, 6);
}

TEST_F(RefusedChangesTest, WithAnUnreadableJournalNothingCanBeChangedAndTheBarStays) {
    haveAPast();
    std::ofstream(*options.journalDirectory / "journal.json") << "{ damaged";
    const auto before = everythingIn(folder.path);
    openWindow();
    EXPECT_EQ(*model->state().startupError,
              "The change journal could not be opened: The change journal could not be read: " +
                  (*options.journalDirectory / "journal.json").string() +
                  ": it is damaged, or something else than Brell wrote it. Nothing can be changed until this "
                  "is fixed.");
    onEveryPage([&] {
        expectNothingCanBeChanged();
        bool said = false;
        for (const NoticeBar* bar : visible<NoticeBar>(*window))
            said = said || bar->words().startsWith("The change journal could not be opened: ");
        EXPECT_TRUE(said);
    });
    PresetMenu presets(*model);
    emit presets.aboutToShow();
    for (const QAction* action : presets.actions())
        EXPECT_EQ(action->isEnabled(), !action->text().contains("port Preset")) << utf8(action->text());
    EXPECT_EQ(model->journalDirectory(), *options.journalDirectory) << "where the damaged one lies";
    EXPECT_FALSE(model->state().undo.size());
    auto after = changesIn(folder.path, before);
    std::erase(after, "mac/private/var/db/.launchd.lock");
    EXPECT_EQ(after, Texts{});
}

// It was all right when the window was opened.
TEST_F(RefusedChangesTest, WithAJournalThatGoesBadNothingIsClaimedUntilItCanBeReadAgain) {
    openLivedIn();
    const std::filesystem::path journal = *options.journalDirectory / "journal.json";
    const std::string before = contentsOf(journal);
    setContents(journal, before.substr(0, before.size() / 2));
    settled()->refreshAll();
    onEveryPage([&] {
        expectNothingCanBeChanged();
        for (const TweakRow* tweak : visible<TweakRow>(*window->currentPage())) {
            if (const auto* toggle = qobject_cast<Switch*>(tweak->control())) {
                EXPECT_FALSE(toggle->isKnown());
            }
            EXPECT_TRUE(words(*tweak).contains("Not known")) << tweak->tweak().id;
        }
    });
    EXPECT_TRUE(words(window->strip()).startsWith("The change journal could not be read: "));
    EXPECT_FALSE(words(window->strip()).contains("JSON")) << "which is the parser's word";
    press(window->strip(), "Show Restore Script");
    QWidget* script = nullptr;
    for (QWidget* one : QApplication::topLevelWidgets())
        if (auto* view = one->findChild<QPlainTextEdit*>(); view && one->isVisible()) {
            EXPECT_TRUE(view->toPlainText().startsWith("#!"));
            script = one;
        }
    ASSERT_TRUE(script);
    script->close();

    setContents(journal, before);
    settled()->refreshAll();
    EXPECT_FALSE(words(window->strip()).contains("journal"));
    go(Screen::finder);
    EXPECT_TRUE(row("finder.show_hidden").control()->isEnabled());
}

TEST_F(RefusedChangesTest, AnInterruptedChangeIsNotTakenForDone) {
    openLivedIn();
    const TweakRowState state = tweakRowState(*model, *model->catalog().tweak("finder.drives_on_desktop"));
    ASSERT_TRUE(state.badge);
    EXPECT_EQ(state.badge->text, "Interrupted");
    EXPECT_EQ(state.isOn, false) << "none of its keys is stored";
    EXPECT_TRUE(state.canUndo);
}

}  // namespace brell::testing
