#include "CorvaneBrell/Window/PrivacyPage.h"

#include <QPushButton>
#include <algorithm>

#include "CorvaneBrell/Window/Card.h"
#include "CorvaneBrell/Window/DayText.h"
#include "CorvaneBrell/Window/PaneButton.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/TweakList.h"

namespace brell {

PrivacyCardRow::PrivacyCardRow(AppModel& model, const PrivacyCard& card, QWidget* parent)
    : Row(qt(card.title), Columns::control, parent), model_(model), card_(card) {
    setObjectName(qt(card.id));
    setWhat(tr("%1\nWho needs it: %2\nWhat to look for: %3")
                .arg(qt(card.meaning), qt(card.whoNeedsIt), qt(card.whatToLookFor)));
    auto* buttons = new QWidget;
    auto* column = new QVBoxLayout(buttons);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    column->addWidget(paneButton(card.deepLink, tr("Privacy & Security, then %1").arg(qt(card.title))));
    reviewed_ = actionButton(tr("Mark as reviewed"), "checkmark.circle");
    reviewed_->setAccessibleName(tr("Mark as reviewed: %1").arg(qt(card.title)));
    connect(reviewed_, &QPushButton::clicked, this, [this] { model_.markReviewed(card_.id); });
    column->addWidget(reviewed_);
    setControl(buttons);
    refresh();
}

void PrivacyCardRow::refresh() {
    const auto date = model_.reviewedDate(card_.id);
    const QString state = date ? tr("Reviewed on %1").arg(dayText(*date)) : tr("Not reviewed yet");
    std::vector<RowBadge> notices{
        {state, date ? "checkmark.circle" : "questionmark.circle", date ? Tone::positive : Tone::plain, {}}};
    setNotices(notices);
    reviewed_->setAccessibleDescription(state);
    reviewed_->setEnabled(!isLocked(model_.state()));
}

PrivacyPage::PrivacyPage(AppModel& model, QWidget* parent)
    : Page(qt(title(Screen::privacy)), qt(purpose(Screen::privacy)), parent), tweaks_(new TweakList(model)) {
    tweaks_->show(tweaksOf(model, TweakGroup::privacy));
    content()->addWidget(tweaks_);

    content()->addWidget(sectionHeading(tr("To review by hand")));
    const auto& all = PrivacyChecklist::cards();
    if (std::any_of(all.begin(), all.end(), [](const PrivacyCard& one) { return !one.paneConfirmed; }))
        content()->addWidget(new Paragraph(
            tr("The links to System Settings are not confirmed on this macOS: one may open another pane."),
            Paragraph::Look::secondary));
    auto* card = new Card;
    for (const PrivacyCard& privacyCard : PrivacyChecklist::cards()) {
        cards_.push_back(new PrivacyCardRow(model, privacyCard));
        card->add(cards_.back());
    }
    content()->addWidget(card);
}

void PrivacyPage::refresh(const Changes& changed) {
    tweaks_->refresh();
    if (changed.contains(Topic::privacy) || changed.contains(Topic::journal))
        for (PrivacyCardRow* card : cards_) card->refresh();
}

}  // namespace brell
