#include "CorvaneBrell/Window/SearchPage.h"

#include <QPushButton>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Window/Card.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Row.h"
#include "CorvaneBrell/Window/TweakList.h"

namespace brell {

SearchPage::SearchPage(AppModel& model, QWidget* parent)
    : Page(tr("Search"), tr("Esc leads back to the page you came from."), parent),
      model_(model),
      list_(new TweakList(model)),
      screensHeading_(sectionHeading(tr("Pages"))),
      screens_(new Card) {
    content()->addWidget(list_);
    content()->addWidget(screensHeading_);
    content()->addWidget(screens_);
    screensHeading_->hide();
    screens_->hide();
}

void SearchPage::setQuery(const QString& query) {
    const SearchResults found = model_.search().find(utf8(query));
    list_->showResults(found.tweaks, query.split(' ', Qt::SkipEmptyParts));
    showScreens(found.screens);
    const bool nothing = found.tweaks.empty() && found.screens.empty();
    setEmptyState(
        nothing ? tr("Nothing is called “%1”; try another word for it.").arg(inBrief(query.trimmed(), 60))
                : QString());
}

void SearchPage::refresh(const Changes&) {
    list_->refresh();
}

void SearchPage::showScreens(const std::vector<Screen>& screens) {
    if (screens == shownScreens_) return;
    shownScreens_ = screens;
    screens_->clear();
    screensHeading_->setVisible(!screens.empty());
    screens_->setVisible(!screens.empty());
    for (const Screen screen : screens) {
        auto* row = new Row(qt(title(screen)));
        row->setWhat(qt(purpose(screen)));
        auto* open = actionButton(tr("Open"), qt(symbol(screen)));
        open->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        open->setAccessibleName(tr("Open the page %1").arg(qt(title(screen))));
        connect(open, &QPushButton::clicked, this, [this, screen] { emit screenAsked(screen); });
        row->setControl(open);
        screens_->add(row);
    }
}

}  // namespace brell
