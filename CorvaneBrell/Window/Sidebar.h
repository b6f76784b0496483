// The search field and the list of pages, each page with its symbol and the number of its active changes.
#pragma once

#include <QWidget>

#include "CorvaneBrell/Model/AppModel.h"

class QLineEdit;
class QListWidget;

namespace brell {

class Sidebar final : public QWidget {
    Q_OBJECT
public:
    explicit Sidebar(AppModel& model, QWidget* parent = nullptr);

    void refresh();
    // While the results of a search are shown no page is marked as the one that is.
    void setSearching(bool searching);
    QLineEdit& search() const { return *search_; }
    QListWidget& pages() const { return *pages_; }
    int heightOfAll() const;  // with every page in sight

signals:
    void searched(const QString& query);  // empty when the search has ended
    void entered();                       // into the results, by Return or the arrow down

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void noteHowTheListIsUsed(const QEvent& event);

    AppModel& model_;
    QLineEdit* search_;
    QListWidget* pages_;
};

}  // namespace brell
