// A page of tweaks: the rows of one group in the order of the catalog.
#pragma once

#include "CorvaneBrell/Window/Page.h"

class QCheckBox;

namespace brell {

class AppModel;
class TweakList;

class TweakPage final : public Page {
    Q_OBJECT
public:
    TweakPage(AppModel& model, Screen screen, QWidget* parent = nullptr);

    void refresh(const Changes& changed) override;
    // Only the rows with an active change of ours.
    void setChangedOnly(bool changedOnly);
    TweakList& list() const { return *list_; }

signals:
    void changedOnlyAsked(bool changedOnly);

private:
    AppModel& model_;
    const Screen screen_;
    QCheckBox* changedOnly_;
    QPushButton* showAll_;
    TweakList* list_;
};

}  // namespace brell
