// Finds tweaks and pages, and what stands on them, by the words people use for them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "BrellCore/Background/LoginItems.h"
#include "BrellCore/Catalog/TweakCatalog.h"
#include "BrellCore/Review/PrivacyChecklist.h"
#include "CorvaneBrell/Model/Screen.h"

namespace brell {

// A page, or a privacy card on it.
struct Place {
    Screen screen;
    std::string id;  // a page itself has none
    std::string title, what;
    bool operator==(const Place&) const = default;
};

// Best first; what fits equally well is in the order of the catalog, of the sidebar and of the pages.
struct SearchResults {
    std::vector<const Tweak*> tweaks;
    std::vector<const Place*> places;
    std::vector<std::size_t> items;  // places in the list of login items that was set
    bool operator==(const SearchResults&) const = default;
};

class TweakSearch {
public:
    // Over the tweaks offered on this macOS. The catalog must outlive the search.
    TweakSearch(const TweakCatalog& catalog, int macOSMajor);

    // The login items that are found from now on.
    void setLoginItems(const std::vector<LoginItemRow>& items);

    // Finds what holds every word of the query, as the beginning of a word of its own; letter case and
    // accents do not count, and of a word that is found nowhere one wrong letter after the first is forgiven.
    // A query without words finds nothing. Takes some milliseconds with thousands of login items.
    SearchResults find(std::string_view query) const;

private:
    struct Posting {
        std::string word;
        std::size_t subject;  // index of a tweak; after them, of a place; after those, of a login item
        int weight;
    };
    using Postings = std::vector<Posting>;

    static void index(Postings& postings, std::size_t subject, std::string_view text, int weight);
    static void indexKey(Postings& postings, std::size_t subject, std::string_view key, int weight);
    static void sort(Postings& postings);
    std::size_t count() const { return tweaks_.size() + places_.size() + itemCount_; }
    std::size_t newPlace(Place place);
    void indexTweak(std::size_t subject);
    void indexScreen(Screen screen);
    void indexCard(const PrivacyCard& card);
    void indexItem(std::size_t subject, const LoginItemRow& item);
    std::vector<int> scores(std::string_view word) const;
    std::vector<int> scoresOfMistyped(std::string_view word) const;

    std::vector<const Tweak*> tweaks_;
    std::vector<Place> places_;
    std::size_t itemCount_ = 0;
    Postings postings_, ofTheItems_;  // sorted by word
};

}  // namespace brell
