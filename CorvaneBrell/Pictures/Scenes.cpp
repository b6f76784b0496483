#include "CorvaneBrell/Pictures/Scenes.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QLineEdit>
#include <QScrollBar>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Row.h"
#include "CorvaneBrell/Window/Sheet.h"
#include "CorvaneBrell/Window/SheetPresenter.h"
#include "CorvaneBrell/Window/Sidebar.h"

namespace brell {

namespace {

void nothing(MainWindow&) {}

// The button that clears a search fades out.
void waitForFading() {
    QElapsedTimer time;
    time.start();
    while (time.elapsed() < 500) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

Scene page(Screen screen) {
    return {std::string(rawValue(screen)), [screen](MainWindow& window) { window.model().show(screen); },
            nothing};
}

Scene search(const std::string& name, const QString& query) {
    return {name, [query](MainWindow& window) { window.sidebar().search().setText(query); },
            [](MainWindow& window) {
                window.sidebar().search().clear();
                waitForFading();
            }};
}

void setDetailsOpen(MainWindow& window, bool open) {
    const QList<Row*> rows = window.currentPage()->findChildren<Row*>();
    if (!rows.isEmpty()) rows.front()->setOpen(open);
}

Scene details(Screen screen) {
    return {screen == Screen::loginItems ? "details-item" : "details",
            [screen](MainWindow& window) {
                window.model().show(screen);
                settle(window);
                setDetailsOpen(window, true);
            },
            [](MainWindow& window) { setDetailsOpen(window, false); }};
}

Scene history() {
    return {"journal-history",
            [](MainWindow& window) {
                window.model().show(Screen::journal);
                settle(window);
                QScrollBar* bar = window.currentPage()->scrollArea()->verticalScrollBar();
                bar->setValue(bar->maximum());
            },
            [](MainWindow& window) { window.currentPage()->scrollArea()->verticalScrollBar()->setValue(0); }};
}

// A relaunch that waits, and something that can't be done.
Scene bars() {
    return {"bars",
            [](MainWindow& window) {
                window.model().show(Screen::loginItems);  // so that what comes later is new
                settle(window);
                window.model().show(Screen::dock);
                window.model().apply("dock.no_bounce");
                settle(window);
                window.model().applyChoice("dock.size", "enormous");
            },
            [](MainWindow& window) {
                window.model().dismiss(&AppState::errorMessage);
                window.model().undoLast();
                settle(window);
                window.model().recover({});
                settle(window);
                window.model().askRelaunch();
                window.model().confirmRelaunch();
                while (window.model().state().relaunchActivity) settle(window);
            }};
}

Scene recovery() {
    return {"sheet-recovery", nothing, [](MainWindow& window) { window.model().deferRecovery(); }};
}

Scene restore() {
    return {"sheet-restore",
            [](MainWindow& window) {
                window.model().show(Screen::journal);
                window.model().askRestoreAll();
            },
            [](MainWindow& window) { window.model().cancelRestore(); }};
}

Scene drift() {
    return {"sheet-drift", [](MainWindow& window) { window.model().turnOff("dock.autohide_instant"); },
            [](MainWindow& window) { window.model().cancelDrift(); }};
}

Scene agents() {
    return {"sheet-agents",
            [](MainWindow& window) {
                window.model().show(Screen::loginItems);
                settle(window);
                for (const LoginItemRow& row : window.model().state().loginItems)
                    if (row.badge == LoginItemBadge::toggleable && row.isOn && row.record)
                        return window.model().askAgents({row.id}, false);
            },
            [](MainWindow& window) { window.model().cancelAgents(); }};
}

// Once it is answered, the page shows everything.
Scene taskList() {
    return {"sheet-task-list",
            [](MainWindow& window) {
                window.model().show(Screen::loginItems);
                settle(window);
                window.model().askTaskList();
            },
            [](MainWindow& window) { window.model().confirmTaskList(); }};
}

Scene listedItems() {
    Scene scene = page(Screen::loginItems);
    scene.name += "-listed";
    return scene;
}

Scene relaunch() {
    return {"sheet-relaunch",
            [](MainWindow& window) {
                window.model().show(Screen::finder);
                window.model().apply("dock.no_bounce");
                window.model().apply("finder.status_bar");
                settle(window);
                window.model().askRelaunch();
            },
            [](MainWindow& window) { window.model().cancelRelaunch(); }};
}

Scene preset() {
    Preset mixed = Presets::shipped().front();
    mixed.tweakIDs.insert(mixed.tweakIDs.end(), {"anim.no_window_animation", "finder.from_tomorrow"});
    return {"sheet-preset", [mixed](MainWindow& window) { window.model().askPreset(mixed); }, nothing};
}

Scene presetResult() {
    return {"sheet-preset-result", [](MainWindow& window) { window.model().confirmPreset(); },
            [](MainWindow& window) { window.sheets().current()->reject(); }};
}

Scene exporting() {
    return {"sheet-export", [](MainWindow& window) { window.model().askExport(); },
            [](MainWindow& window) { window.model().cancelExport(); }};
}

}  // namespace

std::vector<Scene> scenesOfTrouble() {
    return {recovery(), bars()};
}

std::vector<Scene> scenesOfDamage() {
    return {{"damaged", [](MainWindow& window) { window.model().show(Screen::dock); }, nothing},
            {"sheet-rebuild", [](MainWindow& window) { window.model().askRebuild(); },
             [](MainWindow& window) { window.model().confirmRebuild(); }},
            {"sheet-rebuilt", nothing, nothing}};
}

// Everything is restored, also what drifted; the Trash is a folder beside.
std::vector<Scene> scenesOfLeaving() {
    const auto restoreAll = [](MainWindow& window) {
        window.model().askRestoreAll();
        settle(window);
        std::set<Uuid> drifted;
        for (const DriftedEntry& one : window.model().state().restoreRequest.value().changes.entries)
            drifted.insert(one.entry.id);
        window.model().confirmRestore(drifted);
    };
    const auto leave = [](MainWindow& window) {
        window.model().confirmLeaving([](const std::filesystem::path& folder) {
            std::filesystem::rename(folder, folder.parent_path() / "Trash");
        });
    };
    return {{"sheet-leaving", [](MainWindow& window) { window.model().askLeaving(); }, restoreAll},
            {"sheet-leaving-proof", nothing, leave},
            {"sheet-left", nothing, nothing}};
}

std::vector<Scene> everydayScenes() {
    std::vector<Scene> all;
    for (std::size_t i = 0; i < enumTexts<Screen>.size(); ++i) all.push_back(page(static_cast<Screen>(i)));
    for (const Scene& scene :
         {search("search", "hidden"), search("search-item", "google"), details(Screen::dock),
          details(Screen::loginItems), history(), restore(), drift(), taskList(), listedItems(), agents(),
          relaunch(), preset(), presetResult(), exporting()})
        all.push_back(scene);
    return all;
}

void settle(MainWindow& window) {
    do {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        window.refreshNow();
    } while (window.model().isBusy());
    QCoreApplication::processEvents();
}

}  // namespace brell
