#include "CorvaneBrell/Model/TweakSearch.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Model/LoginItemWords.h"

namespace brell {

namespace {

// How much a place counts where a word is found. A whole word counts more than the beginning of one, but
// never as much as the next better place.
namespace Weight {
constexpr int title = 100, everyday = 80, choice = 60, key = 50, place = 30, what = 20, id = 10;
constexpr int wholeWord = 8;
}  // namespace Weight

// Words that say that something is wanted and not what; they may be missing.
constexpr std::array<std::string_view, 30> fillers{
    "a",   "an", "and", "change", "disable", "do",   "does", "enable", "for",  "get",
    "how", "i",  "in",  "is",     "it",      "make", "me",   "my",     "of",   "off",
    "on",  "or", "set", "the",    "to",      "turn", "use",  "want",   "when", "with"};

constexpr std::size_t shortestMistyped = 4;  // with fewer letters too much would be found

bool isFiller(std::string_view word) {
    return std::find(fillers.begin(), fillers.end(), word) != fillers.end();
}

std::vector<std::string> wordsOf(std::string_view text) {
    std::vector<std::string> words;
    const std::string slug = lowerCaseSlug(text);
    for (std::size_t begin = 0; begin < slug.size();) {
        const std::size_t end = std::min(slug.find('-', begin), slug.size());
        words.push_back(caseFolded(slug.substr(begin, end - begin), Accents::dropped));
        begin = end + 1;
    }
    return words;
}

bool isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}
bool isLower(char c) {
    return c >= 'a' && c <= 'z';
}

// A part begins at each capital in "AppleShowAllFiles" and at "Key" in "FXKey".
bool partBeginsAt(std::string_view key, std::size_t i) {
    if (i == 0) return true;
    return isUpper(key[i]) && (!isUpper(key[i - 1]) || (i + 1 < key.size() && isLower(key[i + 1])));
}

// The word begins as it was typed, but for one letter after the first: another one, one that is missing, or
// two that are swapped.
bool beginsNearly(std::string_view word, std::string_view typed) {
    const auto differ = std::mismatch(word.begin(), word.end(), typed.begin(), typed.end());
    const auto same = static_cast<std::size_t>(differ.first - word.begin());
    if (same == 0 || same == word.size() || same == typed.size()) return false;
    const auto goesOn = [&](std::size_t ofWord, std::size_t ofTyped) {
        return word.substr(same + ofWord).starts_with(typed.substr(same + ofTyped));
    };
    const bool areSwapped = same + 1 < word.size() && same + 1 < typed.size() &&
                            word[same] == typed[same + 1] && word[same + 1] == typed[same];
    return goesOn(1, 1) || goesOn(1, 0) || (areSwapped && goesOn(2, 2));
}

}  // namespace

TweakSearch::TweakSearch(const TweakCatalog& catalog, int macOSMajor)
    : tweaks_(catalog.available(macOSMajor)) {
    for (std::size_t i = 0; i < tweaks_.size(); ++i) indexTweak(i);
    for (const Screen screen : allCases<Screen>()) indexScreen(screen);
    for (const PrivacyCard& card : PrivacyChecklist::cards()) indexCard(card);
    sort(postings_);
}

void TweakSearch::setLoginItems(const std::vector<LoginItemRow>& items) {
    itemCount_ = items.size();
    ofTheItems_.clear();
    for (std::size_t i = 0; i < items.size(); ++i) indexItem(tweaks_.size() + places_.size() + i, items[i]);
    sort(ofTheItems_);
}

void TweakSearch::sort(Postings& postings) {
    std::sort(postings.begin(), postings.end(),
              [](const Posting& one, const Posting& other) { return one.word < other.word; });
}

// Gives its subject.
std::size_t TweakSearch::newPlace(Place place) {
    places_.push_back(std::move(place));
    return tweaks_.size() + places_.size() - 1;
}

void TweakSearch::index(Postings& postings, std::size_t subject, std::string_view text, int weight) {
    for (std::string& word : wordsOf(text)) postings.push_back({std::move(word), subject, weight});
}

// Every part of the key with all that follows it, so that "allfiles" finds AppleShowAllFiles.
void TweakSearch::indexKey(Postings& postings, std::size_t subject, std::string_view key, int weight) {
    for (std::size_t begin = 0; begin < key.size(); ++begin)
        if (partBeginsAt(key, begin)) index(postings, subject, key.substr(begin), weight);
}

void TweakSearch::indexTweak(std::size_t subject) {
    const Tweak& tweak = *tweaks_[subject];
    index(postings_, subject, tweak.title, Weight::title);
    index(postings_, subject, tweak.searchWords, Weight::everyday);
    if (const auto* kind = std::get_if<ChoiceKind>(&tweak.kind))
        for (const Choice& choice : kind->choices) index(postings_, subject, choice.title, Weight::choice);
    for (const Write& write : tweak.writes) {
        indexKey(postings_, subject, write.key.name, Weight::key);
        indexKey(postings_, subject, write.key.domain, Weight::place);
    }
    index(postings_, subject, title(tweak.group), Weight::place);
    index(postings_, subject, tweak.explanation.what, Weight::what);
    index(postings_, subject, tweak.id, Weight::id);
}

void TweakSearch::indexScreen(Screen screen) {
    const std::size_t subject =
        newPlace({screen, {}, std::string(title(screen)), std::string(purpose(screen))});
    index(postings_, subject, title(screen), Weight::title);
    index(postings_, subject, searchWords(screen), Weight::everyday);
    index(postings_, subject, purpose(screen), Weight::what);
}

void TweakSearch::indexCard(const PrivacyCard& card) {
    const std::size_t subject =
        newPlace({Screen::privacy, std::string(card.id), std::string(card.title), std::string(card.meaning)});
    index(postings_, subject, card.title, Weight::title);
    index(postings_, subject, card.meaning, Weight::what);
}

void TweakSearch::indexItem(std::size_t subject, const LoginItemRow& item) {
    index(ofTheItems_, subject, item.title, Weight::title);
    if (item.explanation.app != item.title) index(ofTheItems_, subject, item.explanation.app, Weight::title);
    index(ofTheItems_, subject, subtitleWords(item), Weight::key);
}

// For each subject how well it holds the word; 0 where it does not.
std::vector<int> TweakSearch::scores(std::string_view word) const {
    std::vector<int> scores(count());
    for (const Postings* postings : {&postings_, &ofTheItems_}) {
        auto found = std::lower_bound(
            postings->begin(), postings->end(), word,
            [](const Posting& posting, std::string_view sought) { return posting.word < sought; });
        for (; found != postings->end() && found->word.starts_with(word); ++found) {
            const int score = found->weight + (found->word == word ? Weight::wholeWord : 0);
            scores[found->subject] = std::max(scores[found->subject], score);
        }
    }
    const bool isFound = std::any_of(scores.begin(), scores.end(), [](int score) { return score > 0; });
    return isFound || word.size() < shortestMistyped ? scores : scoresOfMistyped(word);
}

// Far less than for what was typed right.
std::vector<int> TweakSearch::scoresOfMistyped(std::string_view word) const {
    constexpr int part = 10;
    std::vector<int> scores(count());
    for (const Postings* postings : {&postings_, &ofTheItems_})
        for (const Posting& posting : *postings)
            if (beginsNearly(posting.word, word))
                scores[posting.subject] = std::max(scores[posting.subject], posting.weight / part);
    return scores;
}

SearchResults TweakSearch::find(std::string_view query) const {
    const std::vector<std::string> words = wordsOf(query);
    const bool onlyFillers = std::all_of(words.begin(), words.end(), isFiller);
    std::vector<std::int64_t> totals(count());
    std::vector<bool> misses(totals.size(), words.empty());
    for (const std::string& word : words) {
        const std::vector<int> found = scores(word);
        const bool needed = onlyFillers || !isFiller(word);
        for (std::size_t i = 0; i < totals.size(); ++i) {
            totals[i] += found[i];
            if (needed && found[i] == 0) misses[i] = true;
        }
    }

    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < totals.size(); ++i)
        if (!misses[i]) order.push_back(i);
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t one, std::size_t other) { return totals[one] > totals[other]; });
    SearchResults results;
    for (const std::size_t subject : order)
        if (subject < tweaks_.size())
            results.tweaks.push_back(tweaks_[subject]);
        else if (const std::size_t place = subject - tweaks_.size(); place < places_.size())
            results.places.push_back(&places_[place]);
        else
            results.items.push_back(place - places_.size());
    return results;
}

}  // namespace brell
