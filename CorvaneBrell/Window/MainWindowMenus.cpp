// The menus of the window and their shortcuts.

#include <QApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QUrl>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Version.h"
#include "CorvaneBrell/Window/FileActions.h"
#include "CorvaneBrell/Window/MainWindow.h"
#include "CorvaneBrell/Window/Message.h"
#include "CorvaneBrell/Window/PresetMenu.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Sidebar.h"
#include "CorvaneBrell/Window/TweakPage.h"

namespace brell {

namespace {

void about(QWidget* window) {
    tell(window, MainWindow::tr("Corvane Brell %1").arg(QApplication::applicationVersion()),
         MainWindow::tr(
             "Changes hidden preferences and switches your own LaunchAgents off and on. What a key held "
             "before is saved before anything is written, and every change can be undone exactly."));
}

}  // namespace

void MainWindow::makeMenus() {
    makeFileMenu();
    makeEditMenu();
    makeViewMenu();
    makeOtherMenus();
    // A key that is held asks once: for one undo, and for one look at everything.
    for (QAction* action : findChildren<QAction*>()) action->setAutoRepeat(false);
}

void MainWindow::makeFileMenu() {
    QMenu* menu = menuBar()->addMenu(tr("File"));
    const auto add = [&](const QString& text, const QKeySequence& keys, void (*act)(AppModel&, QWidget*)) {
        ofTheJournal_.push_back(menu->addAction(text, keys, this, [this, act] { act(model_, this); }));
    };
    add(tr("Import Preset..."), QKeySequence(tr("Ctrl+O")), importPreset);
    add(tr("Export Preset..."), QKeySequence(tr("Ctrl+E")), exportActivePreset);
    menu->addSeparator();
    add(tr("Save Report..."), QKeySequence::Save, FileActions::saveReport);
    add(tr("Save Restore Script..."), QKeySequence(tr("Ctrl+Shift+S")), FileActions::saveRestoreScript);
    menu->addSeparator();
    menu->addAction(tr("Close Window"), QKeySequence::Close, this, &QWidget::close);
    QAction* quit = menu->addAction(tr("Quit Corvane Brell"), QKeySequence::Quit, this, &QWidget::close);
    quit->setMenuRole(QAction::QuitRole);
}

void MainWindow::makeEditMenu() {
    QMenu* menu = menuBar()->addMenu(tr("Edit"));
    undo_ = menu->addAction(tr("Undo"), QKeySequence::Undo, this, [this] { model_.undoLast(); });
    menu->addSeparator();
    // For the field that has the focus. macOS's own panels find these keys in a menu only, and Qt leads them
    // there.
    const auto add = [&](const QString& text, QKeySequence::StandardKey keys, const QByteArray& slot) {
        menu->addAction(text, keys, this, [slot] {
            QWidget* field = QApplication::focusWidget();
            const bool isKnown = field && field->metaObject()->indexOfSlot(slot + "()") >= 0;
            if (isKnown) QMetaObject::invokeMethod(field, slot.constData());
        });
    };
    add(tr("Cut"), QKeySequence::Cut, "cut");
    add(tr("Copy"), QKeySequence::Copy, "copy");
    add(tr("Paste"), QKeySequence::Paste, "paste");
    add(tr("Select All"), QKeySequence::SelectAll, "selectAll");
    menu->addSeparator();
    menu->addAction(tr("Find"), QKeySequence::Find, this, &MainWindow::focusSearch);
}

void MainWindow::makeViewMenu() {
    QMenu* menu = menuBar()->addMenu(tr("View"));
    for (std::size_t i = 0; i < enumTexts<Screen>.size(); ++i) {
        const auto screen = static_cast<Screen>(i);
        QAction* action =
            menu->addAction(label(qt(title(screen))), this, [this, screen] { goTo(screen, {}); });
        if (i < 9) action->setShortcut(QKeySequence(QStringLiteral("Ctrl+%1").arg(i + 1)));
    }
    menu->addSeparator();
    changedOnlyAction_ = menu->addAction(tr("Changed Only"), QKeySequence(tr("Ctrl+Shift+C")));
    changedOnlyAction_->setCheckable(true);
    connect(changedOnlyAction_, &QAction::triggered, this, &MainWindow::setChangedOnly);
    menu->addAction(tr("Refresh"), QKeySequence(tr("Ctrl+R")), this, [this] { model_.refreshShown(); });
}

void MainWindow::makeOtherMenus() {
    QMenu* changes = menuBar()->addMenu(tr("Changes"));
    restoreAll_ = changes->addAction(tr("Restore All..."), this, [this] { model_.askRestoreAll(); });
    changes->addAction(tr("Show Restore Script"), this,
                       [this] { FileActions::showRestoreScript(model_, this); });

    QMenu* window = menuBar()->addMenu(tr("Window"));
    window->addAction(tr("Minimize"), QKeySequence(tr("Ctrl+M")), this, &QWidget::showMinimized);
    window->addAction(tr("Zoom"), this, [this] { isMaximized() ? showNormal() : showMaximized(); });

    QMenu* help = menuBar()->addMenu(tr("Help"));
    QAction* aboutAction = help->addAction(tr("About Corvane Brell"), this, [this] { about(this); });
    aboutAction->setMenuRole(QAction::AboutRole);
    help->addAction(tr("Open the Journal's Folder"), this,
                    [this] { FileActions::showJournalFolder(model_); });
    ofTheJournal_.push_back(help->addAction(tr("Leaving Brell..."), this, [this] { model_.askLeaving(); }));
    const QFileInfo licenses(QApplication::applicationDirPath() + "/../Resources/Licenses.txt");
    if (licenses.exists())  // as in the bundle that users get
        help->addAction(tr("Licenses of the Libraries in Brell"), this, [licenses] {
            QDesktopServices::openUrl(QUrl::fromLocalFile(licenses.canonicalFilePath()));
        });
}

// "Undo Hide the Dock automatically", grey when there is nothing to undo.
void MainWindow::refreshMenus() {
    const AppState& state = model_.state();
    constexpr qsizetype longestName = 60;
    const bool isOpen = !isLocked(state);
    const SessionChange* last = isOpen ? state.undo.next() : nullptr;
    undo_->setEnabled(last && !state.changeActivity);
    undo_->setText(last ? tr("Undo %1").arg(label(inBrief(qt(last->name), longestName))) : tr("Undo"));
    for (QAction* action : ofTheJournal_) action->setEnabled(isOpen);
    changedOnlyAction_->setEnabled(qobject_cast<TweakPage*>(currentPage()));
    restoreAll_->setEnabled(model_.changedCount(Screen::journal) > 0 && isOpen);
}

}  // namespace brell
