#include "CorvaneBrell/Window/TweakList.h"

#include "CorvaneBrell/Window/TweakRow.h"

namespace brell {

TweakList::TweakList(AppModel& model, QWidget* parent) : QWidget(parent), model_(model), card_(new Card) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(card_);
}

void TweakList::show(const std::vector<const Tweak*>& tweaks) {
    setVisible(!tweaks.empty());
    if (tweaks == shown_) return refresh();
    shown_ = tweaks;
    for (const auto& [id, row] : rows_) row->hide();
    int place = 0;
    for (const Tweak* tweak : tweaks) {
        TweakRow*& row = rows_[tweak->id];
        if (!row) row = new TweakRow(model_, *tweak);
        row->refresh();
        card_->insert(place++, row);
        row->show();
    }
}

void TweakList::showResults(const std::vector<const Tweak*>& tweaks, const QStringList& words) {
    show(tweaks);
    for (const Tweak* tweak : tweaks) rows_.at(tweak->id)->showAsResult(words);
}

void TweakList::refresh() {
    for (const Tweak* tweak : shown_) rows_.at(tweak->id)->refresh();
}

std::vector<const Tweak*> tweaksOf(const AppModel& model, TweakGroup group) {
    std::vector<const Tweak*> tweaks = model.offeredTweaks();
    std::erase_if(tweaks, [group](const Tweak* tweak) { return tweak->group != group; });
    return tweaks;
}

TweakRow* TweakList::row(const std::string& tweakID) const {
    const auto found = rows_.find(tweakID);
    return found == rows_.end() ? nullptr : found->second;
}

}  // namespace brell
