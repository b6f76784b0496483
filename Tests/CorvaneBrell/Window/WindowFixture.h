// The real window over a model on a sample Mac, driven as a user drives it.
#pragma once

#include <QApplication>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTest>
#include <functional>
#include <memory>
#include <sstream>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/SampleMac/SamplePast.h"
#include "CorvaneBrell/SampleMac/SimulatedApplications.h"
#include "CorvaneBrell/Window/ChoiceBox.h"
#include "CorvaneBrell/Window/LoginItemView.h"
#include "CorvaneBrell/Window/MainWindow.h"
#include "CorvaneBrell/Window/QtMainLoop.h"
#include "CorvaneBrell/Window/SheetPresenter.h"
#include "CorvaneBrell/Window/Sidebar.h"
#include "CorvaneBrell/Window/Strip.h"
#include "CorvaneBrell/Window/Switch.h"
#include "CorvaneBrell/Window/TweakList.h"
#include "CorvaneBrell/Window/TweakPage.h"
#include "CorvaneBrell/Window/TweakRow.h"
#include "Tests/CorvaneBrell/SampleMacFixture.h"
#include "Tests/CorvaneBrell/Window/WindowReader.h"
#include "Tests/Support/Shell.h"

namespace brell::testing {

// Of a change that others drifted in a Mac with a past.
inline const PrefKey autohideDelay{"com.apple.dock", "autohide-delay"};

class WindowTest : public SampleMacTest, protected WindowReader {
protected:
    using WindowReader::visible;

    WindowTest() { options.journalDirectory = folder.path / "journal"; }

    // Before the window is opened: a Mac with something of every state.
    void haveAPast() { makePast(sample, *options.journalDirectory, systemNow()); }

    // Opens the window as the program does, and waits until everything is read and shown.
    MainWindow& openWindow() {
        closeWindow();
        model = std::make_unique<AppModel>(options, loop, applications, out);
        window = std::make_unique<MainWindow>(*model);
        window->show();
        settle();
        return *window;
    }

    void closeWindow() {
        if (window) window->close();
        window.reset();
        model.reset();
    }

    // Until nothing runs beside the main thread and all of it is shown.
    void settle() {
        QElapsedTimer waited;
        waited.start();
        do {
            ASSERT_LT(waited.elapsed(), 60'000) << "something beside the main thread does not end";
            takeTurn();
        } while (model->isBusy());
        for (int turn = 0; turn < 3; ++turn) takeTurn();  // what the last news led to
    }

    // For one call of the model: the wait for what it leads to comes with it.
    struct Settled {
        WindowTest& test;
        AppModel* operator->() const { return test.model.get(); }
        ~Settled() { test.settle(); }
    };
    Settled settled() { return {*this}; }

    // A window with a past, the recovery of which is put off.
    void openLivedIn() {
        haveAPast();
        openWindow();
        settled()->deferRecovery();
    }

    void takeTurn() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QApplication::processEvents(QEventLoop::AllEvents, 5);
    }

    void go(Screen screen) { settled()->show(screen); }
    void search(const QString& query) { fill(window->sidebar().search(), query); }
    void filter(const QString& text) { fill(*page().findChild<QLineEdit*>(), text); }
    void damageTheJournal(std::string_view contents = "damaged") {
        setContents(*options.journalDirectory / "journal.json", contents);
        if (model) settled()->refreshAll();
    }
    // As another program would, by words of sed that macOS's knows, too.
    void rewriteJournal(const std::string& commands) {
        const fs::path journal = *options.journalDirectory / "journal.json";
        setContents(journal, runLine("sed " + shellWord(commands) + " " + shellWord(journal)).output);
    }
    // Opens a window with a past on this page.
    void openOn(Screen screen) {
        openLivedIn();
        go(screen);
    }
    // Calls look with each page in turn, everything on it open.
    void onEveryPage(const std::function<void()>& look) {
        for (const Screen screen : allCases<Screen>()) {
            go(screen);
            for (Row* row : page().findChildren<Row*>()) row->setOpen(true);
            settle();
            SCOPED_TRACE(std::string(title(screen)));
            look();
        }
    }

    const QWidget& page() const { return *window->currentPage(); }

    Sheet* sheet() const { return window->sheets().current(); }
    // The title of the sheet that is open; empty when none is.
    std::string sheetTitle() const { return sheet() ? utf8(sheet()->windowTitle()) : ""; }

    // As the user does by the list's pop-up.
    void pick(ChoiceBox& list, int place) {
        list.setCurrentIndex(place);
        emit list.activated(place);
        settle();
    }

    // The row of a tweak on the page that is shown.
    TweakRow& row(const std::string& tweakID) {
        auto* found = window->currentPage()->findChild<TweakRow*>(qt(tweakID));
        EXPECT_TRUE(found) << tweakID;
        return *found;
    }

    const LoginItemRow& itemOf(const std::string& label) const {
        for (const LoginItemRow& item : model->state().loginItems)
            if (item.record && item.record->label() == label) return item;
        throw std::runtime_error("there is no item " + label);
    }

    // Of the page.
    template <class Widget>
    std::vector<Widget*> visible() const {
        return visible<Widget>(page());
    }

    // Of the page, from top to bottom.
    template <class Widget>
    std::vector<Widget*> inOrder() const {
        auto widgets = visible<Widget>();
        std::sort(widgets.begin(), widgets.end(), [&](const QWidget* one, const QWidget* other) {
            return one->mapTo(&page(), QPoint()).y() < other->mapTo(&page(), QPoint()).y();
        });
        return widgets;
    }

    void press(const QWidget& in, const QString& text) {
        movePointerTo(button(in, text));
        click(button(in, text));
    }
    void press(const QString& text) { press(page(), text); }
    void click(QWidget& control) {
        QTest::mouseClick(&control, Qt::LeftButton);
        settle();
    }
    void fill(QLineEdit& field, const QString& text) {
        field.setText(text);
        settle();
    }
    // As the user does before a click; the pointer comes from somewhere else.
    static void movePointerTo(QWidget& widget) {
        for (const QPoint& way : {QPoint(-500, -500), QPoint()}) {
            const QPointF place = widget.rect().center() + way;
            QMouseEvent move(QEvent::MouseMove, place, widget.mapToGlobal(place), Qt::NoButton, {}, {});
            QApplication::sendEvent(&widget, &move);
        }
    }
    void type(QWidget* at, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(at, key, modifiers);
        settle();
    }

    QtMainLoop loop;
    SimulatedApplications applications{loop};
    std::ostringstream out;
    std::unique_ptr<AppModel> model;
    std::unique_ptr<MainWindow> window;
};

}  // namespace brell::testing
