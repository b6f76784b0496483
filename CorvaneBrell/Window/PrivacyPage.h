// The privacy permissions to review by hand, one card each, and what Brell can switch itself.
#pragma once

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/Row.h"

namespace brell {

class TweakList;

class PrivacyCardRow final : public Row {
    Q_OBJECT
public:
    // Model and card must outlive the row.
    PrivacyCardRow(AppModel& model, const PrivacyCard& card, QWidget* parent = nullptr);
    void refresh();

private:
    QLayout* buttons();

    AppModel& model_;
    const PrivacyCard& card_;
    Paragraph* state_;
    QPushButton* reviewed_;
};

class PrivacyPage final : public Page {
    Q_OBJECT
public:
    // The model must outlive the page.
    explicit PrivacyPage(AppModel& model, QWidget* parent = nullptr);
    void refresh(const Changes& changed) override;

private:
    AppModel& model_;
    Paragraph* summary_;
    TweakList* tweaks_;
    std::vector<PrivacyCardRow*> cards_;
};

}  // namespace brell
