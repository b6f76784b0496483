// Rows of tweaks in a card, in whatever order and selection is wanted; a row is made when it is first shown
// and keeps its place, its focus and its open details.
#pragma once

#include <map>
#include <vector>

#include "CorvaneBrell/Model/AppModel.h"
#include "CorvaneBrell/Window/Card.h"

namespace brell {

class TweakRow;

class TweakList final : public QWidget {
    Q_OBJECT
public:
    explicit TweakList(AppModel& model, QWidget* parent = nullptr);

    // Shows exactly these, in this order. The tweaks must outlive the list.
    void show(const std::vector<const Tweak*>& tweaks);
    // The same as results of a search for these words: each with its page, and what was found marked.
    void showResults(const std::vector<const Tweak*>& tweaks, const QStringList& words);
    // Brings what is shown up to date.
    void refresh();
    TweakRow* row(const std::string& tweakID) const;  // nullptr when it was never shown
    const std::vector<const Tweak*>& shown() const { return shown_; }

private:
    AppModel& model_;
    Card* card_;
    std::map<std::string, TweakRow*> rows_;
    std::vector<const Tweak*> shown_;
};

// Those of the group that are offered on this macOS, in the order of the catalog.
std::vector<const Tweak*> tweaksOf(const AppModel& model, TweakGroup group);

}  // namespace brell
