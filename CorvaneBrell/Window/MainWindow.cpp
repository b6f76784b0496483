#include "CorvaneBrell/Window/MainWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QPainter>
#include <QScreen>
#include <QShortcut>
#include <QStackedWidget>
#include <QTimer>
#include <algorithm>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Model/NoticeText.h"
#include "CorvaneBrell/Window/Appearance.h"
#include "CorvaneBrell/Window/FileActions.h"
#include "CorvaneBrell/Window/JournalPage.h"
#include "CorvaneBrell/Window/LoginItemsPage.h"
#include "CorvaneBrell/Window/NoticeBar.h"
#include "CorvaneBrell/Window/PrivacyPage.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/SearchPage.h"
#include "CorvaneBrell/Window/Sheet.h"
#include "CorvaneBrell/Window/SheetPresenter.h"
#include "CorvaneBrell/Window/Sidebar.h"
#include "CorvaneBrell/Window/SpotlightPage.h"
#include "CorvaneBrell/Window/Stillness.h"
#include "CorvaneBrell/Window/Strip.h"
#include "CorvaneBrell/Window/TabOrder.h"
#include "CorvaneBrell/Window/TweakPage.h"
#include "CorvaneBrell/Window/TypeSize.h"

namespace brell {

namespace {

constexpr QSize usual(1100, 760);

Changes everything() {
    Changes all;
    for (const Topic topic : allCases<Topic>()) all.insert(topic);
    return all;
}

QString windowTitle(const AppModel& model) {
    if (model.options().sampleMac) return MainWindow::tr("Corvane Brell (sample Mac)");
    if (model.options().dryRun) return MainWindow::tr("Corvane Brell (dry run)");
    return MainWindow::tr("Corvane Brell");
}

}  // namespace

MainWindow::MainWindow(AppModel& model, QWidget* parent)
    : QMainWindow(parent),
      model_(model),
      sidebar_(new Sidebar(model)),
      stack_(new QStackedWidget),
      strip_(new Strip(model)),
      sheets_(new SheetPresenter(model, this)),
      refresh_(new QTimer(this)),
      look_(loop_, std::chrono::seconds(1), [this] { model_.lookAgain(); }) {
    setWindowTitle(brell::windowTitle(model));
    auto* center = new QWidget;
    strip_->setParent(
        center);  // first: in the circle of the Tab key it comes behind the pages, which are made later
    auto* right = new QVBoxLayout;
    right->setContentsMargins(0, 0, 0, 0);
    right->setSpacing(0);
    if (model.state().startupError) right->addWidget(startupError());
    right->addWidget(stack_, 1);
    right->addWidget(strip_);
    auto* line = new QHBoxLayout(center);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(0);
    line->addWidget(sidebar_);
    line->addLayout(right, 1);
    setCentralWidget(center);
    makeMenus();
    setMinimumSize(smallest(screen()->availableGeometry().size()));

    const std::optional<WindowPlace> place = model.ownPreferences().windowPlace();
    resize(place ? QSize(place->width, place->height).expandedTo(minimumSize()) : usual);
    if (place && !model.options().openGroup) model.show(place->screen);
    connect(sidebar_, &Sidebar::searched, this, &MainWindow::search);
    connect(sidebar_, &Sidebar::entered, this, &MainWindow::enterPage);
    auto* leaveSearch = new QShortcut(Qt::Key_Escape, this);
    connect(leaveSearch, &QShortcut::activated, this, [this] { sidebar_->search().clear(); });
    refresh_->setSingleShot(true);
    connect(refresh_, &QTimer::timeout, this, &MainWindow::refreshNow);
    connect(qApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        // Another application was in front, and may have changed anything.
        if (state == Qt::ApplicationActive) look_.ask();
    });
    model.setObserver([this](Topic topic) { modelChanged(topic); });
    refreshNow();
    sidebar_->pages().setFocus();
    new Stillness(this);
}

MainWindow::~MainWindow() {
    model_.setObserver(nullptr);
}

// With the usual font, or where the screen leaves no more, it is as small as a window may be.
QSize MainWindow::smallest(const QSize& screen) const {
    constexpr QSize least(820, 560);
    constexpr int leastPage = 612, charactersOfAPage = 72, frame = 32;
    const int menus = menuBar()->isNativeMenuBar() ? 0 : menuBar()->sizeHint().height();
    const QSize needed(sidebar_->minimumWidth() + widthFor(charactersOfAPage, leastPage),
                       sidebar_->heightOfAll() + menus);
    return needed.boundedTo(screen - QSize(0, frame)).expandedTo(least);
}

// Alone at the head, because nothing works until it is dealt with; it is there before anything else is.
QWidget* MainWindow::startupError() {
    auto* holder = new QWidget;
    auto* column = new QVBoxLayout(PageColumn::in(holder));
    column->setContentsMargins(PageColumn::margin, 14, PageColumn::margin, 0);
    auto* bar = new NoticeBar(tr("Journal problem"), qt(*model_.state().startupError), "xmark.circle",
                              Tone::critical);
    column->addWidget(bar);
    if (model_.state().isJournalDamaged) {
        rebuild_ = bar->addAction(tr("Rebuild from History..."));
        connect(rebuild_, &QPushButton::clicked, this, [this] { model_.askRebuild(); });
    }
    connect(bar->addAction(tr("Show in Finder")), &QPushButton::clicked, this,
            [this] { FileActions::showJournalFolder(model_); });
    connect(bar->addAction(tr("Show Restore Script")), &QPushButton::clicked, this,
            [this] { FileActions::showRestoreScript(model_, this); });
    return holder;
}

Page* MainWindow::currentPage() const {
    return static_cast<Page*>(stack_->currentWidget());
}

void MainWindow::modelChanged(Topic topic) {
    if (closesWhenDone_) {
        const std::set<std::string> news = newsToStayFor(model_.state());
        closesWhenDone_ = std::includes(seen_.begin(), seen_.end(), news.begin(), news.end());
    }
    for (auto& [page, changes] : stale_) changes.insert(topic);
    if (!refresh_->isActive()) refresh_->start(0);
}

void MainWindow::refreshNow() {
    refresh_->stop();
    const bool searching = searchPage_ && stack_->currentWidget() == searchPage_;
    if (!searching || static_cast<int>(model_.state().screen) != sidebar_->pages().currentRow())
        showScreen(model_.state().screen);
    sidebar_->refresh();
    strip_->refresh();
    refreshMenus();
    if (rebuild_) rebuild_->setEnabled(model_.state().isJournalDamaged);
    Page* shown = currentPage();
    Changes& changes = stale_.at(shown);
    if (!changes.empty()) shown->refresh(std::exchange(changes, {}));
    sheets_->refresh();
    if (closesWhenDone_ && !model_.isWorking() && !model_.state().relaunchActivity) close();
}

void MainWindow::showScreen(Screen screen) {
    if (!sidebar_->search().text().isEmpty()) sidebar_->search().clear();
    showPage(page(screen));
}

void MainWindow::showPage(Page* page) {
    stack_->setCurrentWidget(page);
    sidebar_->setSearching(page == searchPage_);
    model_.showResults(page == searchPage_);
}

Page* MainWindow::page(Screen screen) {
    Page*& known = pages_[screen];
    if (!known) {
        known = makePage(screen);
        stale_[known] = everything();
        stack_->addWidget(known);
    }
    return known;
}

Page* MainWindow::makePage(Screen screen) {
    switch (screen) {
        case Screen::loginItems: return new LoginItemsPage(model_);
        case Screen::privacy: return new PrivacyPage(model_);
        case Screen::spotlight: return new SpotlightPage(model_);
        case Screen::journal: return new JournalPage(model_);
        case Screen::finder:
        case Screen::dock:
        case Screen::missionControl:
        case Screen::animations:
        case Screen::keyboardText:
        case Screen::panelsDocuments:
        case Screen::screenshots:
        case Screen::misc: break;
    }
    auto* page = new TweakPage(model_, screen);
    page->setChangedOnly(changedOnly_);
    connect(page, &TweakPage::changedOnlyAsked, this, &MainWindow::setChangedOnly);
    return page;
}

void MainWindow::setChangedOnly(bool changedOnly) {
    if (changedOnly == changedOnly_) return;
    changedOnly_ = changedOnly;
    changedOnlyAction_->setChecked(changedOnly);
    for (const auto& [screen, page] : pages_)
        if (auto* tweaks = qobject_cast<TweakPage*>(page)) {
            tweaks->setChangedOnly(changedOnly);
            stale_[page].insert(Topic::journal);
        }
    refreshNow();
}

void MainWindow::focusSearch() {
    sidebar_->search().setFocus(Qt::ShortcutFocusReason);
    sidebar_->search().selectAll();
}

// Without words the page that was left is shown again, at the place where it was.
void MainWindow::search(const QString& query) {
    if (query.trimmed().isEmpty()) {
        showPage(page(model_.state().screen));
        return refreshNow();
    }
    if (!searchPage_) {
        searchPage_ = new SearchPage(model_);
        stale_[searchPage_] = everything();
        stack_->addWidget(searchPage_);
        connect(searchPage_, &SearchPage::placeAsked, this, &MainWindow::goTo);
    }
    showPage(searchPage_);
    refreshNow();  // first: what is found is among what the page knows
    searchPage_->setQuery(query);
}

// The page that was chosen has the focus, as the one that is clicked in the sidebar leads to it with Return;
// or the part of it that was chosen.
void MainWindow::goTo(Screen screen, const QString& part) {
    sidebar_->search().clear();
    model_.show(screen);
    refreshNow();
    if (part.isEmpty() || !currentPage()->lead(part)) enterPage();
}

void MainWindow::enterPage() {
    if (QWidget* first = firstControl(currentPage()->scrollArea())) first->setFocus(Qt::TabFocusReason);
}

// Changes that the user asked for are finished first, under way or waiting for their turn. A relaunch waits
// for other apps, so asking twice leaves it.
void MainWindow::closeEvent(QCloseEvent* event) {
    const bool isAskedAgain = closesWhenDone_;
    closesWhenDone_ = model_.isWorking() || (model_.state().relaunchActivity && !isAskedAgain);
    seen_ = newsToStayFor(model_.state());
    if (closesWhenDone_) return event->ignore();
    model_.ownPreferences().keepWindowPlace({width(), height(), model_.state().screen});
    model_.keepMacOS();
    event->accept();
}

// A change of the palette reaches what is painted from it, also where nothing else asks for painting.
bool MainWindow::event(QEvent* event) {
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ApplicationPaletteChange)
        for (QWidget* widget : findChildren<QWidget*>()) widget->update();
    return QMainWindow::event(event);
}

QImage MainWindow::picture() const {
    QPixmap pixmap = const_cast<MainWindow*>(this)->grab();
    if (Sheet* sheet = sheets_->current()) {
        QPainter painter(&pixmap);
        painter.fillRect(rect(), QColor(0, 0, 0, 70));
        const QPixmap over = sheet->grab();
        const QSize size = over.deviceIndependentSize().toSize();
        const QPoint corner((width() - size.width()) / 2, std::max(24, (height() - size.height()) / 3));
        painter.drawPixmap(corner, over);
        painter.setPen(Appearance::outline(palette()));  // in place of the shadow that a screen shows
        painter.drawRect(QRect(corner, size).adjusted(-1, -1, 0, 0));
    }
    return pixmap.toImage();
}

}  // namespace brell
