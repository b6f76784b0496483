// The findings of a search: tweaks that can be changed right here, pages, and what stands on them.
#pragma once

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

    void setQuery(const QString& query);
    void refresh(const Changes& changed) override;
    TweakList& list() const { return *list_; }

signals:
    // The id is that of what stands there; without one the page itself is asked for.
    void placeAsked(Screen screen, const QString& id);

private:
    struct Section {
        std::optional<Screen> page;  // of what stands on it; without one the pages themselves
        RecordList<PlaceRow>* list;
    };

    void addSection(std::optional<Screen> page);
    void find();

    AppModel& model_;
    TweakSearch search_;
    QString query_;
    TweakList* list_;
    std::vector<Section> sections_;
};

}  // namespace brell
