#include "CorvaneBrell/Window/SearchPage.h"

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/TweakList.h"

namespace brell {

// The login items last: they may still be read while the results are shown, and nothing is below them.
SearchPage::SearchPage(AppModel& model, QWidget* parent)
    : Page(tr("Search"), tr("Esc leads back to the page you came from."), parent),
      model_(model),
      search_(model.catalog(), model.macOSMajor()),
      list_(new TweakList(model)) {
    content()->addWidget(list_);
    addSection(std::nullopt);
    addSection(Screen::privacy);
    addSection(Screen::loginItems);
}

void SearchPage::addSection(std::optional<Screen> page) {
    const QString heading = page ? tr("On the page %1").arg(qt(title(*page))) : tr("Pages");
    auto* list = new RecordList<PlaceRow>(heading, [this] {
        auto* row = new PlaceRow;
        connect(row, &PlaceRow::asked, this, &SearchPage::placeAsked);
        return row;
    });
    connect(list, &RowColumn::moreWanted, this, &SearchPage::find);
    content()->addWidget(list);
    sections_.push_back({page, list});
}

void SearchPage::setQuery(const QString& query) {
    query_ = query;
    find();
}

void SearchPage::refresh(const Changes& changed) {
    if (!changed.contains(Topic::loginItems)) return list_->refresh();
    search_.setLoginItems(model_.state().loginItems);
    find();
}

void SearchPage::find() {
    const SearchResults found = search_.find(utf8(query_));
    const QStringList words = query_.split(' ', Qt::SkipEmptyParts);
    list_->showResults(found.tweaks, words);
    for (const Section& section : sections_) {
        std::vector<FoundPlace> first;
        std::size_t all = 0;
        for (const Place* place : found.places)
            if (section.page == (place->id.empty() ? std::nullopt : std::optional(place->screen)) &&
                all++ < section.list->limit())
                first.push_back({*place, words});
        section.list->setRecords(first, all);
    }
    const bool nothing = found.tweaks.empty() && found.places.empty();
    setEmptyState(
        nothing ? tr("Nothing is called “%1”; try another word for it.").arg(inBrief(query_.trimmed(), 60))
                : QString());
}

}  // namespace brell
