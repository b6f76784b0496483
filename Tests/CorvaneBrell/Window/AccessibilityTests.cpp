// Every page as assistive technology and the keyboard meet it.

#include <QAccessible>

#include "CorvaneBrell/Window/TabOrder.h"
#include "Tests/CorvaneBrell/Window/WindowFixture.h"

namespace brell::testing {

namespace {

// Everything that assistive technology meets below this.
void walk(QAccessibleInterface* at, const std::function<void(QAccessibleInterface*)>& visit) {
    if (!at || !at->isValid() || at->state().invisible) return;
    visit(at);
    for (int i = 0; i < at->childCount(); ++i) walk(at->child(i), visit);
}

bool isControl(QAccessible::Role role) {
    static const std::set<QAccessible::Role> controls{
        QAccessible::Button,      QAccessible::ButtonMenu, QAccessible::CheckBox,
        QAccessible::RadioButton, QAccessible::ComboBox,   QAccessible::EditableText,
        QAccessible::List,        QAccessible::ListItem,   QAccessible::Slider};
    return controls.contains(role);
}

}  // namespace

TEST_F(WindowTest, EveryControlHasANameAndSwitchesSayWhatTheyAreWhatTheyHoldAndWhenItTakesEffect) {
    openLivedIn();
    onEveryPage([&] {
        for (const QLineEdit* field : visible<QLineEdit>(*window))
            for (QToolButton* part :
                 field->findChildren<QToolButton*>())  // also one that is hidden while it is empty
                EXPECT_FALSE(QAccessible::queryAccessibleInterface(part)->text(QAccessible::Name).isEmpty());
        walk(QAccessible::queryAccessibleInterface(window.get()), [&](QAccessibleInterface* at) {
            if (!isControl(at->role())) return;
            EXPECT_FALSE(at->text(QAccessible::Name).isEmpty())
                << at->object()->metaObject()->className() << " " << utf8(at->object()->objectName());
            if (at->role() != QAccessible::ComboBox) return;
            ASSERT_TRUE(at->valueInterface()) << "which the systems' bridges ask for";
            EXPECT_EQ(at->valueInterface()->currentValue().toString(),
                      static_cast<ChoiceBox*>(at->object())->value());
        });
        for (TweakRow* tweak : window->currentPage()->findChildren<TweakRow*>()) {
            QWidget* inside = firstControl(tweak->control());
            QWidget* control = inside ? inside : tweak->control();
            QAccessibleInterface* at = QAccessible::queryAccessibleInterface(control);
            EXPECT_TRUE(at->text(QAccessible::Name).contains(qt(tweak->tweak().title)));
            EXPECT_EQ(at->text(QAccessible::Description), qt(tweak->tweak().explanation.takesEffect));
            if (const auto* toggle = qobject_cast<Switch*>(control)) {
                EXPECT_EQ(static_cast<bool>(at->state().checked), toggle->isChecked());
            }
        }
    });
}

// Qt's own action would show the other state and ask nobody.
TEST_F(WindowTest, ASwitchToggledByAssistiveTechnologyChangesTheSetting) {
    openWindow();
    auto* toggle = static_cast<Switch*>(row("finder.show_hidden").control());
    QAccessibleInterface* at = QAccessible::queryAccessibleInterface(toggle);
    ASSERT_TRUE(at->actionInterface());
    at->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_FALSE(toggle->isChecked()) << "it shows what is so";
    settle();
    EXPECT_EQ(stored(PrefKey({"com.apple.finder", "AppleShowAllFiles"})), StoredValue(true));
    EXPECT_TRUE(at->state().checked);
}

// Also rows that arrive later and details that are opened later have their place.
TEST_F(WindowTest, TabReachesEveryControlFromTopToBottomAndComesRound) {
    openLivedIn();
    go(Screen::journal);
    settled()->apply("dock.autohide");  // a row above the others
    onEveryPage([&] {
        std::set<QWidget*> wanted;
        for (QWidget* widget : visible<QWidget>())
            if (widget->isEnabled() && widget->focusPolicy() & Qt::TabFocus) wanted.insert(widget);
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        QWidget* const start = &window->sidebar().pages();
        QWidget* const content = window->currentPage()->scrollArea()->widget();
        start->setFocus();
        QWidget* before = nullptr;  // within the content
        for (std::size_t left = 2 * wanted.size() + 40; left > 0; --left) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            QWidget* const focus = QApplication::focusWidget();
            ASSERT_TRUE(focus);
            wanted.erase(focus);
            if (focus == start) break;
            if (!content->isAncestorOf(focus)) continue;
            const auto height = [&](QWidget* control) {
                return control->mapTo(content, control->rect().center()).y();
            };
            if (before) {
                EXPECT_GT(height(focus), height(before) - 20) << nameOf(before) << " and " << nameOf(focus);
            }
            before = focus;
        }
        EXPECT_EQ(QApplication::focusWidget(), start) << "a trap";
        for (const QWidget* widget : wanted) ADD_FAILURE() << nameOf(widget) << " is not reached";
    });
}

}  // namespace brell::testing
