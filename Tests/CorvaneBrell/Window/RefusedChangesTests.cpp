// A setting that cannot be changed says so and why, and nothing is claimed that is not known.

#include <QDialog>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QToolButton>

#include "CorvaneBrell/Window/ChoiceBox.h"
#include "CorvaneBrell/Window/PresetMenu.h"
#include "CorvaneBrell/Window/StripLine.h"
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
            SCOPED_TRACE(tweak->tweak().id);
            const TweakRowState state = tweakRowState(*model, tweak->tweak());
            EXPECT_TRUE(state.canChange || !state.reason.empty());
            expectWords(*tweak, {qt(state.reason)});
            const QToolButton* wayBack = tweak->wayBack();
            const bool restores = wayBack && wayBack->isVisible();
            EXPECT_EQ(restores, state.undo.has_value());
            if (restores) {
                EXPECT_TRUE(
                    wayBack->accessibleName().startsWith("Back to " + qt(state.undo->leadsTo) + ": "));
                EXPECT_TRUE(wayBack->toolTip().contains("Back to "));
            }
            for (const char* expertsWord : {"absent", "com.apple.", "NSGlobalDomain"})
                EXPECT_FALSE(words(*tweak->details()).contains(expertsWord));
            refused += !state.canChange;
            undoable += restores;
        }
    });
    EXPECT_GE(refused, 3);
    EXPECT_GE(undoable, 6);
}

TEST_F(RefusedChangesTest, WithAnUnreadableJournalNothingCanBeChangedAndTheBarStays) {
    haveAPast();
    setContents(*options.journalDirectory / "journal.json", "{ damaged");
    const auto before = everythingIn(folder.path);
    openWindow();
    onEveryPage([&] {
        expectNothingCanBeChanged();
        expectWords(*window, {"The change journal could not be opened: "});
    });
    PresetMenu presets(*model);
    emit presets.aboutToShow();
    for (const QAction* action : presets.actions())
        EXPECT_EQ(action->isEnabled(), !action->text().contains("port Preset")) << utf8(action->text());
    EXPECT_EQ(model->journalDirectory(), *options.journalDirectory) << "where the damaged one lies";
    auto after = changesIn(folder.path, before);
    std::erase(after, "mac/private/var/db/.launchd.lock");
    EXPECT_EQ(after, Texts{});
}

// It was all right when the window was opened.
TEST_F(RefusedChangesTest, WithAJournalThatGoesBadNothingIsClaimedUntilItCanBeReadAgain) {
    openLivedIn();
    const auto changed = model->changedTweaks();
    const std::filesystem::path journal = *options.journalDirectory / "journal.json";
    const std::string before = contentsOf(journal);
    setContents(journal, before.substr(0, before.size() / 2));
    settled()->refreshAll();
    EXPECT_EQ(model->changedTweaks(), changed) << "the last that is known";
    onEveryPage([&] {
        expectNothingCanBeChanged();
        for (const TweakRow* tweak : visible<TweakRow>(*window->currentPage())) {
            if (const auto* toggle = qobject_cast<Switch*>(tweak->control())) {
                EXPECT_FALSE(toggle->isKnown());
            }
            expectWords(*tweak, {"Not known"});
        }
    });
    const auto told = [&] { return visible<StripLine>(window->strip()).front()->words(); };
    EXPECT_TRUE(told().startsWith("The change journal could not be read: "));
    EXPECT_FALSE(told().contains("JSON")) << "which is the parser's word";
    press(window->strip(), "Show Restore Script");
    auto& script = opened<QDialog>();
    EXPECT_TRUE(script.findChild<QPlainTextEdit*>()->toPlainText().startsWith("#!"));
    script.close();
    settle();
    const auto files = everythingIn(folder.path);
    press(window->strip(), "Rebuild from History...");
    EXPECT_TRUE(words(*window->sheets().current()).contains("goes on with the rebuilt journal at once."));
    type(window->sheets().current(), Qt::Key_Escape);
    EXPECT_EQ(everythingIn(folder.path), files);
    press(window->strip(), "Rebuild from History...");
    press(*window->sheets().current(), "Rebuild");
    press(*window->sheets().current(), "Done");
    EXPECT_FALSE(words(window->strip()).contains("journal"));
    EXPECT_EQ(model->changedTweaks(), changed);
    go(Screen::finder);
    EXPECT_TRUE(row("finder.show_hidden").control()->isEnabled());

    setContents(journal, R"({"format":99,"entries":[]})");
    settled()->refreshAll();
    EXPECT_TRUE(told().startsWith("The change journal could not be read: "));
    for (const QAbstractButton* one : window->strip().findChildren<QAbstractButton*>())
        EXPECT_FALSE(one->isVisible() && one->text().startsWith("Rebuild")) << "a newer Brell's is whole";
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
