// A setting that cannot be changed says so and why, and nothing is claimed that is not known.

#include <QRegularExpression>

#include "CorvaneBrell/Window/PresetMenu.h"
#include "CorvaneBrell/Window/StripLine.h"
#include "Tests/CorvaneBrell/Window/WindowFixture.h"

namespace brell::testing {

namespace {

class RefusedChangesTest : public WindowTest {
protected:
    void expectNothingCanBeChanged() {
        const QRegularExpression changing("^Restore(?! Script)|Apply|Mark as|^Undo|^Choose");
        for (QWidget* control : visible<QWidget>()) {
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
        for (TweakRow* tweak : visible<TweakRow>()) {
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
    go(Screen::finder);
    TweakRow& interrupted = row("finder.drives_on_desktop");
    expectWords(interrupted, {"Interrupted"});
    EXPECT_FALSE(static_cast<Switch*>(interrupted.control())->isChecked()) << "none of its keys is stored";
    EXPECT_TRUE(interrupted.wayBack()->isEnabled());
}

TEST_F(RefusedChangesTest, WithAnUnreadableJournalNothingCanBeChangedAndTheBarStays) {
    haveAPast();
    damageTheJournal();
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
    auto after = changesIn(folder.path, before);
    std::erase(after, "mac/private/var/db/.launchd.lock");
    EXPECT_EQ(after, Texts{});
}

// It was all right when the window was opened.
TEST_F(RefusedChangesTest, WithAJournalThatGoesBadNothingIsClaimedUntilItCanBeReadAgain) {
    openLivedIn();
    const auto changed = model->changedTweaks();
    settled()->askRestoreAll();
    damageTheJournal();
    EXPECT_FALSE(button(*sheet(), "Restore 9").isEnabled()) << "the sheet was open already";
    settled()->cancelRestore();
    EXPECT_EQ(model->changedTweaks(), changed) << "the last that is known";
    onEveryPage([&] {
        expectNothingCanBeChanged();
        for (const TweakRow* tweak : visible<TweakRow>()) {
            if (const auto* toggle = qobject_cast<Switch*>(tweak->control())) {
                EXPECT_FALSE(toggle->isKnown());
            }
            expectWords(*tweak, {"Not known"});
        }
    });
    const auto told = [&] { return visible<StripLine>(window->strip()).front()->words(); };
    EXPECT_TRUE(told().startsWith("The change journal could not be read: "));
    EXPECT_FALSE(told().contains("JSON")) << "which is the parser's word";
    const auto files = everythingIn(folder.path);
    press(window->strip(), "Rebuild from History...");
    expectWords(*sheet(), {"goes on with the rebuilt journal at once."});
    EXPECT_EQ(everythingIn(folder.path), files);
    press(*sheet(), "Rebuild");
    press(*sheet(), "Done");
    EXPECT_FALSE(words(window->strip()).contains("journal"));
    EXPECT_EQ(model->changedTweaks(), changed);
    go(Screen::finder);
    EXPECT_TRUE(row("finder.show_hidden").control()->isEnabled());

    damageTheJournal(R"({"format":99,"entries":[]})");
    EXPECT_TRUE(told().startsWith("The change journal could not be read: "));
    for (const QAbstractButton* one : window->strip().findChildren<QAbstractButton*>())
        EXPECT_FALSE(one->isVisible() && one->text().startsWith("Rebuild")) << "a newer Brell's is whole";
}

}  // namespace brell::testing
