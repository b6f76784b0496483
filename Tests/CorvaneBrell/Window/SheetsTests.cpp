#include <gtest/gtest.h>

#include <QCheckBox>
#include <QPushButton>

#include "CorvaneBrell/Window/NoticeBar.h"
#include "CorvaneBrell/Window/SelectableText.h"
#include "CorvaneBrell/Window/Sheets/AgentConfirmSheet.h"
#include "CorvaneBrell/Window/Sheets/DriftSheet.h"
#include "CorvaneBrell/Window/Sheets/PresetResultSheet.h"
#include "CorvaneBrell/Window/Sheets/PresetSheet.h"
#include "CorvaneBrell/Window/Sheets/RecoverySheet.h"
#include "CorvaneBrell/Window/Sheets/RelaunchSheet.h"
#include "CorvaneBrell/Window/Sheets/RestoreSheet.h"
#include "Tests/CorvaneBrell/Window/WindowFixture.h"

using namespace brell;
using namespace brell::testing;

namespace {

QPushButton* button(const QWidget& in, const QString& text) {
    for (auto* one : in.findChildren<QPushButton*>())
        if (one->text() == text) return one;
    ADD_FAILURE() << "no button " << text.toStdString();
    return nullptr;
}

QPushButton* defaultButton(const QWidget& sheet) {
    for (auto* one : sheet.findChildren<QPushButton*>())
        if (one->isDefault()) return one;
    return nullptr;
}

// Everything that is written in it.
QString words(const QWidget& widget) {
    QStringList texts;
    for (const auto* label : widget.findChildren<QLabel*>()) texts.append(label->text());
    for (const auto* text : widget.findChildren<SelectableText*>()) texts.append(text->toPlainText());
    return texts.join('\n');
}

class SheetsTest : public WindowTest {
protected:
    Sheet* sheet() { return window->sheets().current(); }

    // With the recovery put off.
    void openCalmWindow() {
        haveAPast();
        openWindow();
        model->deferRecovery();
        settle();
        ASSERT_FALSE(sheet());
    }

    Uuid activeEntry(const std::string& tweakID) {
        for (const JournalEntry& entry : model->state().entries)
            if (entry.tweakID == tweakID && entry.isActive()) return entry.id;
        ADD_FAILURE() << tweakID << " is not active";
        return {};
    }

    // Every way out of a sheet but the one that goes on, in turn.
    template <class Kind>
    void expectLeavingChangesNothing(const std::function<void()>& ask) {
        const std::vector<std::function<void()>> waysOut{
            [&] { QTest::keyClick(sheet(), Qt::Key_Escape); },
            [&] { QTest::keyClick(sheet(), Qt::Key_Return); },  // the default key
            [&] { sheet()->close(); },
            [&] { button(*sheet(), "Cancel")->click(); },
        };
        for (std::size_t i = 0; i < waysOut.size(); ++i) {
            const auto before = everythingIn(folder.path);
            ask();
            settle();
            ASSERT_TRUE(qobject_cast<Kind*>(sheet())) << "way " << i;
            waysOut[i]();
            settle();
            EXPECT_FALSE(sheet()) << "way " << i;
            EXPECT_EQ(everythingIn(folder.path), before) << "way " << i;
        }
    }
};

TEST_F(SheetsTest, LeavingAnySheetChangesNoFile) {
    openCalmWindow();
    go(Screen::loginItems);
    const auto& items = model->state().loginItems;
    const auto agent = std::find_if(items.begin(), items.end(), [](const LoginItemRow& row) {
        return row.badge == LoginItemBadge::toggleable && row.isOn;
    });
    ASSERT_NE(agent, items.end());
    model->apply("finder.status_bar");
    settle();

    expectLeavingChangesNothing<RestoreSheet>([&] { model->askRestoreAll(); });
    expectLeavingChangesNothing<DriftSheet>([&] { model->turnOff("dock.autohide_instant"); });
    EXPECT_FALSE(model->state().pendingAfterDrift);
    expectLeavingChangesNothing<AgentConfirmSheet>([&] { model->askAgents({agent->id}, false); });
    expectLeavingChangesNothing<RelaunchSheet>([&] { model->askRelaunch(); });
    expectLeavingChangesNothing<PresetSheet>([&] { model->askPreset(Presets::shipped().front()); });
    EXPECT_FALSE(model->state().errorMessage) << *model->state().errorMessage;
}

TEST_F(SheetsTest, AnInterruptedChangeIsAskedForUntilItIsPutBackOrPutOff) {
    haveAPast();
    openWindow();
    ASSERT_TRUE(qobject_cast<RecoverySheet*>(sheet()));
    EXPECT_TRUE(words(*sheet()).contains("Brell was interrupted while changing a setting"));
    EXPECT_TRUE(words(*sheet()).contains("com.apple.finder ShowHardDrivesOnDesktop: back to absent"));
    EXPECT_TRUE(
        words(*sheet()).contains("The entries stay in the journal and Brell asks again at the next launch."));
    EXPECT_EQ(defaultButton(*sheet())->text(), "Later");

    const auto before = everythingIn(folder.path);
    QTest::keyClick(sheet(), Qt::Key_Escape);
    settle();
    EXPECT_FALSE(sheet());
    EXPECT_TRUE(model->state().recoveryDeferred);
    EXPECT_EQ(everythingIn(folder.path), before);
    EXPECT_TRUE(button(window->bars(), "Restore")->isVisible());

    openWindow();
    ASSERT_TRUE(qobject_cast<RecoverySheet*>(sheet())) << "the next launch asks again";
    button(*sheet(), "Restore")->click();
    settle();
    EXPECT_FALSE(sheet());
    EXPECT_TRUE(model->state().interrupted.empty());
    openWindow();
    EXPECT_FALSE(sheet());
}

TEST_F(SheetsTest, DriftIsOverriddenOnlyWhereItIsTicked) {
    const PrefKey delay{"com.apple.dock", "autohide-delay"};
    const PrefKey expanded{std::string(globalDomain), "NSNavPanelExpandedStateForSaveMode"};
    openCalmWindow();
    const StoredValue theirs = stored(delay);

    model->turnOff("dock.autohide_instant");
    settle();
    ASSERT_TRUE(qobject_cast<DriftSheet*>(sheet()));
    EXPECT_EQ(defaultButton(*sheet())->text(), "Cancel");
    QPushButton* restore = button(*sheet(), "Restore");
    auto* tick = sheet()->findChild<QCheckBox*>();
    EXPECT_FALSE(tick->isChecked());
    EXPECT_FALSE(restore->isEnabled()) << "nothing is ticked";
    QTest::keyClick(tick, Qt::Key_Space);
    EXPECT_TRUE(restore->isEnabled());
    QTest::keyClick(tick, Qt::Key_Space);
    EXPECT_FALSE(restore->isEnabled());
    QTest::keyClick(tick, Qt::Key_Return);
    settle();
    ASSERT_FALSE(sheet());

    // Of several the others are restored, whatever is ticked.
    model->askUndoSince(activeEntry("dock.autohide_instant"));
    settle();
    button(*sheet(), "Restore")->click();
    settle();
    ASSERT_TRUE(qobject_cast<DriftSheet*>(sheet()));
    button(*sheet(), "Restore Ticked")->click();
    settle();
    ASSERT_FALSE(sheet());
    EXPECT_EQ(stored(delay), theirs);
    EXPECT_EQ(stored(expanded), StoredValue::absent());

    model->turnOff("dock.autohide_instant");
    settle();
    QTest::mouseClick(sheet()->findChild<QCheckBox*>(), Qt::LeftButton, {}, {200, 10});
    button(*sheet(), "Restore")->click();
    settle();
    EXPECT_FALSE(sheet());
    EXPECT_NE(stored(delay), theirs);
    EXPECT_TRUE(model->state().drifted.empty());
}

TEST_F(SheetsTest, OneSheetAtATimeTheMostImportantFirst) {
    openCalmWindow();
    model->askPreset(Presets::shipped().front());
    settle();
    const QPointer<Sheet> first = sheet();
    model->askPreset(Presets::shipped().back());
    settle();
    EXPECT_FALSE(first) << "another request, another sheet";
    EXPECT_TRUE(sheet()->windowTitle().contains(qt(Presets::shipped().back().name)));

    model->askRestoreAll();
    settle();
    EXPECT_TRUE(qobject_cast<RestoreSheet*>(sheet()));
    model->turnOff("dock.autohide_instant");
    settle();
    EXPECT_TRUE(qobject_cast<DriftSheet*>(sheet()));
    for (int more = 0; more < 3; ++more) {
        QList<Sheet*> open;
        for (Sheet* one : window->findChildren<Sheet*>())
            if (one->isVisible()) open.append(one);
        EXPECT_EQ(open, QList<Sheet*>{sheet()});
        QTest::keyClick(sheet(), Qt::Key_Escape);
        settle();
    }
    EXPECT_FALSE(sheet());
}

TEST_F(SheetsTest, APresetSaysWhatItWouldDoAndWhatItDid) {
    openCalmWindow();
    const Preset preset{"mixed",
                        "Mixed",
                        "",
                        {"finder.status_bar", "finder.show_extensions", "dock.autohide_instant",
                         "anim.no_window_animation", "finder.from_tomorrow"}};
    model->askPreset(preset);
    settle();
    const QString plan = words(*sheet());
    for (const char* part :
         {"1 of 3 settings would change.", "com.apple.finder ShowStatusBar from", "Already so",
          "Would be refused: Show the hidden Dock instantly already has an active change",
          "never applied by a preset: anim.no_window_animation.",
          "does not know them: finder.from_tomorrow."})
        EXPECT_TRUE(plan.contains(part)) << part << " is not in\n" << plan.toStdString();
    button(*sheet(), "Apply")->click();
    settle();
    ASSERT_TRUE(qobject_cast<PresetResultSheet*>(sheet()));
    EXPECT_TRUE(words(*sheet()).contains("1 of 1 changes were made."));
    QTest::keyClick(sheet(), Qt::Key_Return);
    settle();
    EXPECT_FALSE(sheet()) << "it was read";

    model->askPreset({"nothing", "Nothing", "", {"finder.show_extensions"}});
    settle();
    EXPECT_FALSE(button(*sheet(), "Apply")->isEnabled());
}

TEST_F(SheetsTest, TheBarsSayWhatConcernsNoPageAlone) {
    openCalmWindow();
    model->apply("dock.no_bounce");
    settle();
    EXPECT_TRUE(words(window->bars()).contains("Relaunch the Dock to see what was changed: No bouncing"));
    button(window->bars(), "Relaunch...")->click();
    settle();
    ASSERT_TRUE(qobject_cast<RelaunchSheet*>(sheet()));
    EXPECT_TRUE(words(*sheet()).contains("No bouncing when apps open"));
    QTest::keyClick(sheet(), Qt::Key_Escape);

    // What was dismissed stays away, and what comes next is said even in the same words.
    const auto proof = [&] {
        for (const auto* bar : window->bars().findChildren<NoticeBar*>())
            if (!bar->isHidden() && bar->words().contains("exactly as before")) return bar;
        return static_cast<const NoticeBar*>(nullptr);
    };
    for (const char* tweakID : {"dock.no_bounce", "text.no_autocapitalize"}) {
        model->turnOff(tweakID);
        settle();
        ASSERT_TRUE(proof()) << tweakID;
        EXPECT_EQ(proof()->words(), "1 of 1 key is exactly as before.");
        button(*proof(), "Dismiss")->click();
        settle();
        EXPECT_FALSE(proof());
    }
    model->applyChoice("dock.size", "enormous");
    settle();
    EXPECT_TRUE(words(window->bars()).contains("Brell could not do that\nIcon size has no choice enormous."));
    model->dismissError();
    settle();
    EXPECT_FALSE(model->state().errorMessage);
}

}  // namespace
