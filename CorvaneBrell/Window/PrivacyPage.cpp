#include "CorvaneBrell/Window/PrivacyPage.h"

#include <QPushButton>
#include <algorithm>

#include "CorvaneBrell/Window/Card.h"
#include "CorvaneBrell/Window/DayText.h"
#include "CorvaneBrell/Window/FactList.h"
#include "CorvaneBrell/Window/PaneButton.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/TweakList.h"

namespace brell {

PrivacyCardRow::PrivacyCardRow(AppModel& model, const PrivacyCard& card, QWidget* parent)
    : Row(qt(card.title), Columns::control, parent),
      model_(model),
      card_(card),
      state_(new Paragraph({}, Paragraph::Look::secondary)) {
    setObjectName(qt(card.id));
    auto* facts = new FactList;
    facts->add(tr("What it means"), qt(card.meaning));
    facts->add(tr("Who needs it"), qt(card.whoNeedsIt));
    facts->add(tr("What to look for"), qt(card.whatToLookFor));
    auto* below = new QWidget;
    auto* column = new QVBoxLayout(below);
    column->setContentsMargins(0, 4, 0, 2);
    column->setSpacing(10);
    column->addWidget(facts);
    column->addLayout(buttons());
    addBelow(below);
    refresh();
}

QLayout* PrivacyCardRow::buttons() {
    auto* line = new QHBoxLayout;
    line->setSpacing(8);
    line->addWidget(paneButton(card_.deepLink, tr("Privacy & Security, then %1").arg(qt(card_.title))));
    reviewed_ = actionButton(tr("Mark as reviewed"), "checkmark.circle");
    reviewed_->setAccessibleName(tr("Mark as reviewed: %1").arg(qt(card_.title)));
    connect(reviewed_, &QPushButton::clicked, this, [this] { model_.markReviewed(card_.id); });
    line->addWidget(reviewed_);
    line->addSpacing(4);
    line->addWidget(state_, 1, Qt::AlignVCenter);
    return line;
}

void PrivacyCardRow::refresh() {
    const auto date = model_.reviewedDate(card_.id);
    state_->setText(date ? tr("Reviewed on %1").arg(dayText(*date)) : tr("Not reviewed yet"));
    reviewed_->setAccessibleDescription(state_->text());
    reviewed_->setEnabled(!isLocked(model_.state()));
}

PrivacyPage::PrivacyPage(AppModel& model, QWidget* parent)
    : Page(qt(title(Screen::privacy)), qt(purpose(Screen::privacy)), parent),
      model_(model),
      summary_(new Paragraph),
      tweaks_(new TweakList(model)) {
    setHeadLine(summary_);
    tweaks_->show(tweaksOf(model, TweakGroup::privacy));
    content()->addWidget(tweaks_);

    auto* section = new QVBoxLayout;
    section->setSpacing(7);
    section->addWidget(sectionHeading(tr("To review by hand")));
    const auto& all = PrivacyChecklist::cards();
    if (std::any_of(all.begin(), all.end(), [](const PrivacyCard& one) { return !one.paneConfirmed; }))
        section->addWidget(new Paragraph(
            tr("The links to System Settings are not confirmed on this macOS: one may open another pane."),
            Paragraph::Look::secondary));
    auto* card = new Card;
    for (const PrivacyCard& privacyCard : PrivacyChecklist::cards()) {
        cards_.push_back(new PrivacyCardRow(model, privacyCard));
        card->add(cards_.back());
    }
    section->addWidget(card);
    content()->addLayout(section);
}

void PrivacyPage::refresh(const Changes& changed) {
    tweaks_->refresh();
    if (!changed.contains(Topic::privacy) && !changed.contains(Topic::journal)) return;
    for (PrivacyCardRow* card : cards_) card->refresh();
    const auto& all = PrivacyChecklist::cards();
    const auto reviewed = std::count_if(all.begin(), all.end(), [this](const PrivacyCard& card) {
        return model_.reviewedDate(card.id).has_value();
    });
    summary_->setText(tr("Reviewed %1 of %2.").arg(reviewed).arg(all.size()));
}

}  // namespace brell
