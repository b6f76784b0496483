// Nothing moves that the user did not move, and no click reaches what came under the pointer meanwhile.

#include <QAbstractItemView>
#include <QComboBox>
#include <QScrollBar>
#include <QWheelEvent>

#include "CorvaneBrell/Model/KeyReadings.h"
#include "CorvaneBrell/Window/Stillness.h"
#include "Tests/CorvaneBrell/Window/WindowFixture.h"

namespace brell::testing {

namespace {

void scrollOver(QWidget* widget, int delta) {
    QWheelEvent event(QPointF(5, 5), widget->mapToGlobal(QPointF(5, 5)), {0, delta}, {0, delta}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &event);
}

// What a click is for; also the parts that make up another one.
bool isControl(const QWidget* widget) {
    return qobject_cast<const QAbstractButton*>(widget) || qobject_cast<const QComboBox*>(widget) ||
           qobject_cast<const QLineEdit*>(widget);
}

bool isPart(const QWidget* widget) {
    return qobject_cast<QLineEdit*>(widget->parentWidget()) ||
           qobject_cast<QComboBox*>(widget->parentWidget());
}

class StillTest : public WindowTest {
protected:
    void openStill() {
        openLivedIn();
        window->findChild<Stillness*>()->setWaiting(std::chrono::hours(1));
        window->resize(window->minimumSize());  // all of it is on the screen of the platform
        settle();
    }

    // A press and its release, wherever they arrive.
    void clickAt(const QPoint& place, QEvent::Type press) {
        for (const QEvent::Type type : {press, QEvent::MouseButtonRelease}) {
            QWidget* under = QApplication::activePopupWidget();
            if (!under) under = QApplication::widgetAt(place);
            if (!under) return;
            const bool isDown = type != QEvent::MouseButtonRelease;
            QMouseEvent event(type, under->mapFromGlobal(QPointF(place)), place, Qt::LeftButton,
                              isDown ? Qt::LeftButton : Qt::NoButton, {});
            QApplication::sendEvent(under, &event);
        }
        settle();
    }

    // The first click has led where it does when the second one comes.
    void doubleClick(QWidget& control) {
        const QPoint place = control.mapToGlobal(control.rect().center());
        movePointerTo(control);
        clickAt(place, QEvent::MouseButtonPress);
        clickAt(place, QEvent::MouseButtonDblClick);
    }

    // Leaves all that was opened without an answer.
    void leaveEverything() {
        for (int left = 8; left > 0; --left) {
            QWidget* open = QApplication::activePopupWidget();
            for (QWidget* one : QApplication::topLevelWidgets())
                if (!open && one != window.get() && one->isVisible() && one->isWindow()) open = one;
            if (!open) return;
            open->close();
            settle();
        }
        ADD_FAILURE() << "something stays open";
    }

    std::vector<QPointer<QWidget>> controls(const QWidget& in) const {
        std::vector<QPointer<QWidget>> all;
        for (QWidget* widget : visible<QWidget>(in)) {
            const auto* button = qobject_cast<QPushButton*>(widget);
            const bool opensMenu = button && button->menu();
            const bool isField = qobject_cast<QLineEdit*>(widget);
            if (isControl(widget) && !isField && !isPart(widget) && widget->isEnabled() && !opensMenu)
                all.emplace_back(widget);
        }
        return all;
    }

    // The keys that a control may change: those of its row's tweak.
    static Names keysOf(const QWidget* control) {
        Names keys;
        for (; control; control = control->parentWidget())
            if (const auto* row = qobject_cast<const TweakRow*>(control))
                for (const Write& write : row->tweak().writes) keys.insert(write.key.rendered());
        return keys;
    }

    // Of every tweak's keys but these.
    std::map<std::string, std::string> valuesBeside(const Names& own) const {
        std::map<std::string, std::string> held;
        const auto store = sample.openPreferences();
        for (const Tweak& tweak : model->catalog().all())
            for (const Write& write : tweak.writes)
                if (const auto value = readIfPossible(write.key, *store);
                    value && !own.contains(write.key.rendered()))
                    held[write.key.rendered()] = value->rendered();
        return held;
    }

    void expectDoubleClickStaysWithItsControl(QWidget& control) {
        SCOPED_TRACE(utf8(control.accessibleName() + " / " + control.property("text").toString()));
        const Names own = keysOf(&control);
        const auto before = valuesBeside(own);
        const auto files = everythingIn(folder.path / "mac");
        doubleClick(control);
        leaveEverything();
        EXPECT_EQ(valuesBeside(own), before);
        Texts others = changesIn(folder.path / "mac", files);
        std::erase_if(others, [](const std::string& file) {
            return file.find("Library/Preferences") != std::string::npos || file.ends_with(".lock");
        });
        EXPECT_EQ(others, Texts{});
    }

    // Where the controls of the page stand, on the screen.
    std::map<const QWidget*, QRect> places() const {
        std::map<const QWidget*, QRect> found;
        for (const QWidget* widget : visible<QWidget>(*window))
            if ((isControl(widget) || qobject_cast<const Row*>(widget)) &&
                !window->strip().isAncestorOf(widget))
                found[widget] = {widget->mapToGlobal(QPoint()), widget->size()};
        return found;
    }

    void expectNothingMoved(const std::map<const QWidget*, QRect>& before, const char* after) const {
        const auto now = places();
        for (const auto& [widget, place] : before)
            if (const auto found = now.find(widget); found != now.end()) {
                EXPECT_EQ(found->second, place) << utf8(widget->accessibleName()) << " after " << after;
            }
    }
};

}  // namespace

TEST_F(StillTest, ADoubleClickOnAnyControlChangesNothingBesideWhatItStandsFor) {
    openStill();
    std::size_t clicked = 0;
    for (const Screen screen : allCases<Screen>()) {
        SCOPED_TRACE(std::string(title(screen)));
        go(screen);
        QScrollArea* scroll = window->currentPage()->scrollArea();
        for (const QPointer<QWidget>& control : controls(page())) {
            if (!control || !control->isVisible() || !control->isEnabled()) continue;
            if (scroll->isAncestorOf(control)) scroll->ensureWidgetVisible(control, 0, 40);
            settle();
            expectDoubleClickStaysWithItsControl(*control);
            ++clicked;
            if (HasFailure()) return;
        }
        for (const QPointer<QWidget>& control : controls(window->strip()))
            if (control && control->isVisible()) expectDoubleClickStaysWithItsControl(*control);
    }
    // Results of a search, which lead away from it.
    for (const char* query : {"lumenfold", "camera", "icon size"})
        for (std::size_t i = 0;; ++i) {
            search(query);
            const auto found = controls(page());
            if (i >= found.size()) break;
            expectDoubleClickStaysWithItsControl(*found[i]);
        }
    EXPECT_GT(clicked, 150);
    EXPECT_GT(model->state().undo.size(), 0) << "the first clicks do something";
}

// Qt makes the first choice of a list current where none is picked.
TEST_F(StillTest, AKeyThatIsHeldOpensAListOrAsksOnceAndAnswersNothing) {
    const PrefKey size{"com.apple.dock", "tilesize"};
    writeFromOutside(size, 50);
    openWindow().activateWindow();
    go(Screen::dock);
    const auto hold = [&](QWidget* at, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers, {}, true);
        QApplication::sendEvent(at, &event);
        settle();
    };
    auto* sizes = row("dock.size").findChild<ChoiceBox*>();
    sizes->setFocus();
    type(sizes, Qt::Key_Return);
    ASSERT_TRUE(sizes->view()->currentIndex().isValid());
    hold(sizes->view(), Qt::Key_Return);
    EXPECT_EQ(stored(size), StoredValue(50));
    sizes->hidePopup();

    for (const char* tweakID : {"dock.autohide", "dock.no_recents"}) settled()->apply(tweakID);
    hold(window.get(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(model->state().undo.size(), 2);

    settled()->askRestoreAll();
    hold(sheet(), Qt::Key_Escape);
    EXPECT_TRUE(sheet());
}

TEST_F(StillTest, TheWheelAndAClickOnTextChangeNothingAndTargetsAreLargeEnough) {
    openLivedIn();
    const auto before = everythingIn(folder.path / "mac" / "Users");
    const std::size_t entries = model->state().entries.size();
    const auto turnTheWheel = [&] {
        for (QWidget* widget : visible<QWidget>()) {
            if (!isControl(widget) || isPart(widget)) continue;
            const QString shown = widget->property("currentText").toString();
            scrollOver(widget, -120);
            scrollOver(widget, 120);
            EXPECT_EQ(widget->property("currentText").toString(), shown) << nameOf(widget);
            EXPECT_GE(widget->height(), 24) << nameOf(widget);
        }
    };
    onEveryPage([&] {
        turnTheWheel();
        for (Row* row : visible<Row>()) {
            const bool wasOpen = row->isOpen();
            QTest::mouseClick(row, Qt::LeftButton, {}, {40, 24});
            if (row->details()) {
                EXPECT_NE(row->isOpen(), wasOpen) << nameOf(row);
            }
        }
    });
    search("log");
    turnTheWheel();
    const std::string seen = "sam/Library/Preferences/com.corvane.brell.plist";  // the login items
    EXPECT_EQ(changesIn(folder.path / "mac" / "Users", before), Texts{seen});
    EXPECT_EQ(model->state().entries.size(), entries);
}

TEST_F(StillTest, WhatComesUnderTheRestingPointerTakesAClickOnlyAfterAWhile) {
    openStill();
    go(Screen::finder);
    QWidget& control = *row("finder.show_hidden").control();
    const QPoint place = control.mapToGlobal(control.rect().center());
    const auto bringUnderThePointer = [&] {
        go(Screen::journal);
        movePointerTo(control);
        go(Screen::finder);
    };
    bringUnderThePointer();
    clickAt(place, QEvent::MouseButtonPress);
    EXPECT_EQ(stored(showHidden), StoredValue::absent());
    clickAt(place + QPoint(12, 0), QEvent::MouseButtonPress);
    EXPECT_EQ(stored(showHidden), StoredValue(true)) << "the user has moved to it";

    window->findChild<Stillness*>()->setWaiting(std::chrono::milliseconds(0));
    bringUnderThePointer();
    clickAt(place, QEvent::MouseButtonPress);
    EXPECT_EQ(stored(showHidden), StoredValue::absent()) << "the while is over";
}

// Badges, ways back, notices of every kind, progress, an empty state: each at the smallest size and at a
// usual one.
TEST_F(StillTest, NothingThatIsToldMovesAControl) {
    for (const QSize size : {QSize(820, 560), QSize(1100, 760)}) {
        openStill();
        window->resize(size);
        go(Screen::dock);
        settled()->apply("dock.no_bounce");
        settled()->turnOff("dock.no_bounce");  // every row has been all that it can be
        const auto before = places();
        settled()->apply("dock.no_bounce");
        expectNothingMoved(before, "a badge, a way back and a relaunch");
        settled()->applyChoice("dock.size", "enormous");
        expectNothingMoved(before, "an error");
        settled()->turnOff("dock.no_bounce");
        expectNothingMoved(before, "an undo");

        go(Screen::loginItems);
        const auto* field = page().findChild<QLineEdit*>();
        const auto items = places();
        model->loadLoginItems();
        for (int turn = 0; turn < 20; ++turn) takeTurn();
        expectNothingMoved(items, "what is being read");
        settle();
        filter("no such item");
        EXPECT_EQ(field->mapToGlobal(QPoint()), items.at(field).topLeft()) << "an empty state";
    }
}

TEST_F(StillTest, TheRightSideOfRowsStandsInColumnsThatAreTheSameOnEveryPage) {
    for (const int width : {820, 1100, 1600}) {
        openStill();
        window->resize(width, 900);
        std::set<int> arrows, controlEnds, waysBack, lists;
        const auto right = [&](const QWidget* part) {
            return part->mapTo(window.get(), part->rect().topRight()).x();
        };
        for (const Screen screen : allCases<Screen>()) {
            go(screen);
            for (const Row* row : visible<Row>()) {
                if (row->control() && row->control()->isVisible())
                    controlEnds.insert(right(row->control()) - row->control()->contentsMargins().right());
                if (row->wayBack() && row->wayBack()->isVisible()) waysBack.insert(right(row->wayBack()));
                for (const QToolButton* button : visible<QToolButton>(*row))
                    if (button->accessibleName().startsWith("Details of")) arrows.insert(right(button));
            }
            for (const ChoiceBox* list : visible<ChoiceBox>()) {
                lists.insert(list->width());
                for (int i = 0; i < list->count(); ++i)
                    EXPECT_LE(list->fontMetrics().horizontalAdvance(list->itemText(i)) + 30,
                              RowLayout::controlWidth())
                        << utf8(list->itemText(i));
            }
        }
        EXPECT_EQ(arrows.size(), 1) << width;
        EXPECT_EQ(controlEnds.size(), 1) << width;
        EXPECT_EQ(waysBack.size(), 1) << width;
        EXPECT_EQ(lists, std::set<int>{RowLayout::controlWidth()}) << width;
    }
}

TEST_F(StillTest, DetailsThatAreOpenedAtTheFootAreScrolledIntoSight) {
    openStill();
    window->resize(820, 560);
    go(Screen::finder);
    const QScrollArea* scroll = window->currentPage()->scrollArea();
    Row& last = row("finder.no_dsstore_on_shares");
    scroll->verticalScrollBar()->setValue(scroll->verticalScrollBar()->maximum());
    settle();
    press(last, "Details of " + last.title());
    const int top = last.mapTo(scroll->viewport(), QPoint()).y();
    EXPECT_LE(top + last.height(), scroll->viewport()->height());
    EXPECT_GE(top, 0);
}

}  // namespace brell::testing
