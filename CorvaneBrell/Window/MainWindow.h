// The window: the sidebar, one page, the strip at its foot, and the menus.
#pragma once

#include <QMainWindow>
#include <map>

#include "CorvaneBrell/Model/Paced.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/QtMainLoop.h"

class QPushButton;
class QStackedWidget;
class QTimer;

namespace brell {

class AppModel;
class SearchPage;
class SheetPresenter;
class Sidebar;
class Strip;
class TweakPage;

class MainWindow final : public QMainWindow {
    Q_OBJECT
public:
    // Becomes the model's observer; the model must outlive the window. Only the page the model shows is
    // built.
    explicit MainWindow(AppModel& model, QWidget* parent = nullptr);
    ~MainWindow() override;

    AppModel& model() const { return model_; }
    Sidebar& sidebar() const { return *sidebar_; }
    Strip& strip() const { return *strip_; }
    SheetPresenter& sheets() const { return *sheets_; }
    Page* currentPage() const;
    std::size_t pagesBuilt() const { return pages_.size(); }

    void setChangedOnly(bool changedOnly);
    void focusSearch();

    // The smallest that the window may be on a screen that leaves it this much: its contents' needs in the
    // font, but no more than the screen has, unless that is less than 820 x 560.
    QSize smallest(const QSize& screen) const;

    // Shows at once what otherwise waits for the next turn of the event loop.
    void refreshNow();

    // Everything of the window as it stands, with the open sheet over it.
    QImage picture() const;

protected:
    void closeEvent(QCloseEvent* event) override;
    bool event(QEvent* event) override;

private:
    void modelChanged(Topic topic);
    void goTo(Screen screen, const QString& part);
    void showScreen(Screen screen);
    void showPage(Page* page);
    void search(const QString& query);
    void enterPage();
    Page* page(Screen screen);
    Page* makePage(Screen screen);

    QWidget* startupError();

    void makeMenus();
    void makeFileMenu();
    void makeEditMenu();
    void makeViewMenu();
    void makeOtherMenus();
    void refreshMenus();

    AppModel& model_;
    Sidebar* sidebar_;
    QStackedWidget* stack_;
    Strip* strip_;
    SearchPage* searchPage_ = nullptr;  // made by the first search
    SheetPresenter* sheets_;
    QPushButton* rebuild_ = nullptr;  // where the journal was damaged at the start
    QTimer* refresh_;
    QtMainLoop loop_;
    Paced look_;  // at what others may have changed
    std::map<Screen, Page*> pages_;
    std::map<const Page*, Changes> stale_;  // what each page has not shown yet
    bool changedOnly_ = false;
    bool closesWhenDone_ = false;
    std::set<std::string> seen_;  // what would keep it open, when it was to close

    std::vector<QAction*> ofTheJournal_;  // without a journal that can be read they would say what is not so
    QAction* undo_ = nullptr;
    QAction* restoreAll_ = nullptr;
    QAction* changedOnlyAction_ = nullptr;
};

}  // namespace brell
