#include "CorvaneBrell/Window/SearchPage.h"

#include <algorithm>
#include <initializer_list>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/TweakList.h"

namespace brell {

namespace {

constexpr std::size_t batch = 25;  // of login items: they are made while the user types

QString headingOf(Screen page) {
    return SearchPage::tr("On the page %1").arg(qt(title(page)));
}

}  // namespace

// The login items last: they may still be read while the results are shown, and nothing is below them.
SearchPage::SearchPage(AppModel& model, QWidget* parent)
    : Page(tr("Search"), tr("Esc leads back to the page you came from."), parent),
      model_(model),
      search_(model.catalog(), model.macOSMajor()),
      list_(new TweakList(model)),
      pages_(placeList(tr("Pages"))),
      cards_(placeList(headingOf(Screen::privacy))),
      items_(new RecordList<LoginItemView>(
          headingOf(Screen::loginItems), [this] { return new LoginItemView(model_); }, batch)) {
    connect(items_, &RowColumn::moreWanted, this, &SearchPage::find);
    for (QWidget* part : std::initializer_list<QWidget*>{list_, pages_, cards_, items_})
        content()->addWidget(part);
}

RecordList<PlaceRow>* SearchPage::placeList(const QString& heading) {
    return new RecordList<PlaceRow>(heading, [this] {
        auto* row = new PlaceRow;
        connect(row, &PlaceRow::asked, this, &SearchPage::placeAsked);
        return row;
    });
}

void SearchPage::setQuery(const QString& query) {
    query_ = query;
    find();
}

void SearchPage::refresh(const Changes& changed) {
    const bool areOthers = changed.contains(Topic::loginItems);
    if (areOthers) search_.setLoginItems(model_.state().loginItems);
    if (areOthers || changed.contains(Topic::journal)) return find();
    list_->refresh();
}

void SearchPage::find() {
    const SearchResults found = search_.find(utf8(query_));
    const QStringList words = query_.split(' ', Qt::SkipEmptyParts);
    list_->showResults(found.tweaks, words);
    showPlaces(found.places, words);
    showItems(found.items, words);
    const bool nothing = found.tweaks.empty() && found.places.empty() && found.items.empty();
    setEmptyState(
        nothing ? tr("Nothing is called “%1”; try another word for it.").arg(inBrief(query_.trimmed(), 60))
                : QString());
}

void SearchPage::showPlaces(const std::vector<const Place*>& found, const QStringList& words) {
    std::vector<FoundPlace> pages, cards;
    for (const Place* place : found) (place->id.empty() ? pages : cards).push_back({*place, words});
    pages_->setRecords(pages);
    cards_->setRecords(cards);
}

void SearchPage::showItems(const std::vector<std::size_t>& found, const QStringList& words) {
    const ShownLoginItems shown(model_.state());
    std::vector<ShownLoginItem> first;
    for (std::size_t i = 0; i < std::min(found.size(), items_->limit()); ++i)
        first.push_back(shown.of(model_.state().loginItems.at(found[i])));
    items_->setRecords(first, found.size());
    for (const auto& [id, row] : items_->rows()) row->mark(words);
}

}  // namespace brell
