// The real window over a model on a sample Mac of the test's own, driven as a user drives it.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>
#include <ctime>
#include <map>
#include <memory>
#include <sstream>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/SampleMac/SampleMac.h"
#include "CorvaneBrell/SampleMac/SamplePast.h"
#include "CorvaneBrell/SampleMac/SimulatedApplications.h"
#include "CorvaneBrell/Window/MainWindow.h"
#include "CorvaneBrell/Window/NoticeBars.h"
#include "CorvaneBrell/Window/QtMainLoop.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/SheetPresenter.h"
#include "CorvaneBrell/Window/Sidebar.h"
#include "CorvaneBrell/Window/TweakList.h"
#include "CorvaneBrell/Window/TweakPage.h"
#include "CorvaneBrell/Window/TweakRow.h"
#include "Tests/Support/Testing.h"

namespace brell::testing {

class WindowTest : public ::testing::Test {
protected:
    WindowTest() : sample(folder.path / "mac") {
        options.sampleMac = folder.path / "mac";
        options.journalDirectory = folder.path / "journal";
    }

    // Before the window is opened: a Mac with something of every state.
    void haveAPast() { liveIn(sample, *options.journalDirectory, systemNow()); }

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

    // One turn of the event loop. What it cost this thread is kept when no turn cost more.
    void takeTurn() {
        const double before = workedSeconds();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QApplication::processEvents(QEventLoop::AllEvents, 5);
        longestTurn = std::max(longestTurn, workedSeconds() - before);
    }

    // Of this thread alone, so that a busy machine does not count.
    static double workedSeconds() {
        timespec time{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    }

    void go(Screen screen) {
        model->show(screen);
        settle();
    }

    // The row of a tweak on the page that is shown.
    TweakRow& row(const std::string& tweakID) {
        auto* found = window->currentPage()->findChild<TweakRow*>(qt(tweakID));
        EXPECT_TRUE(found) << tweakID;
        return *found;
    }

    // The visible widgets of a kind, below the window or a part of it.
    template <class Widget>
    static std::vector<Widget*> visible(const QWidget& in) {
        std::vector<Widget*> widgets;
        for (Widget* widget : in.findChildren<Widget*>())
            if (widget->isVisibleTo(&in)) widgets.push_back(widget);
        return widgets;
    }

    StoredValue stored(const PrefKey& key) const { return sample.openPreferences()->exactValue(key); }
    std::map<std::string, PlistFileStore::Values> preferences() const {
        return sample.openPreferences()->snapshot();
    }

    TemporaryFolder folder;
    SampleMac sample;
    LaunchOptions options;
    QtMainLoop loop;
    SimulatedApplications applications{loop};
    std::ostringstream out;
    std::unique_ptr<AppModel> model;
    std::unique_ptr<MainWindow> window;
    double longestTurn = 0;  // seconds of work
};

inline const std::vector<Screen>& everyScreen() {
    static const std::vector<Screen> all = [] {
        std::vector<Screen> screens;
        for (std::size_t i = 0; i < enumTexts<Screen>.size(); ++i) screens.push_back(static_cast<Screen>(i));
        return screens;
    }();
    return all;
}

}  // namespace brell::testing
