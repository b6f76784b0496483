// The findings of a search: tweaks that can be changed right here, and pages.
#pragma once

#include "CorvaneBrell/Window/Page.h"

namespace brell {

class AppModel;
class Card;
class TweakList;

class SearchPage final : public Page {
    Q_OBJECT
public:
    explicit SearchPage(AppModel& model, QWidget* parent = nullptr);

    void setQuery(const QString& query);
    void refresh(const Changes& changed) override;
    TweakList& list() const { return *list_; }

signals:
    void screenAsked(Screen screen);

private:
    void showScreens(const std::vector<Screen>& screens);

    AppModel& model_;
    TweakList* list_;
    Paragraph* screensHeading_;
    Card* screens_;
    std::vector<Screen> shownScreens_;
};

}  // namespace brell
