// Finds tweaks and pages by the words people use for them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "CorvaneBrell/Model/Screen.h"

namespace brell {

// Best first; what fits equally well is in the order of the catalog and of the sidebar.
struct SearchResults {
    std::vector<const Tweak*> tweaks;
    std::vector<Screen> screens;
    bool operator==(const SearchResults&) const = default;
};

// Built once; after that it may be used from any thread.
class TweakSearch {
public:
    // Over the tweaks offered on this macOS. The catalog must outlive the search.
    TweakSearch(const TweakCatalog& catalog, int macOSMajor);

    // Finds what holds every word of the query, as the beginning of a word of its own; letter case and
    // accents do not count, and of a word that is found nowhere one wrong letter after the first is forgiven.
    // A query without words finds nothing. Takes well under a millisecond.
    SearchResults find(std::string_view query) const;

private:
    struct Posting {
        std::string word;
        std::size_t subject;  // index of a tweak; after them, of a screen
        int weight;
    };

    void index(std::size_t subject, std::string_view text, int weight);
    void indexKey(std::size_t subject, std::string_view key, int weight);
    void indexTweak(std::size_t subject);
    void indexScreen(Screen screen);
    std::vector<int> scores(std::string_view word) const;
    std::vector<int> scoresOfMistyped(std::string_view word) const;

    std::vector<const Tweak*> tweaks_;
    std::vector<Posting> postings_;  // sorted by word
};

}  // namespace brell
