// The findings of a search: tweaks and login items that can be changed right here, pages, and the cards on
// them.
#pragma once

#include "CorvaneBrell/Window/LoginItemView.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/PlaceRow.h"
#include "CorvaneBrell/Window/RecordList.h"

namespace brell {

class AppModel;
class TweakList;

class SearchPage final : public Page {
    Q_OBJECT
public:
    explicit SearchPage(AppModel& model, QWidget* parent = nullptr);

    // Of a page that is up to date.
    void setQuery(const QString& query);
    void refresh(const Changes& changed) override;
    TweakList& list() const { return *list_; }

signals:
    // The id is that of what stands there; without one the page itself is asked for.
    void placeAsked(Screen screen, const QString& id);

private:
    RecordList<PlaceRow>* placeList(const QString& heading);
    void find();
    void showPlaces(const std::vector<const Place*>& found, const QStringList& words);
    void showItems(const std::vector<std::size_t>& found, const QStringList& words);

    AppModel& model_;
    TweakSearch search_;
    QString query_;
    TweakList* list_;
    RecordList<PlaceRow>* pages_;
    RecordList<PlaceRow>* cards_;
    RecordList<LoginItemView>* items_;
};

}  // namespace brell
