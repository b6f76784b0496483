#include "CorvaneBrell/Model/TweakSearch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <set>

using namespace brell;

namespace {

class TweakSearchTest : public ::testing::Test {
protected:
    std::vector<std::string> ids(std::string_view query) const {
        std::vector<std::string> found;
        for (const Tweak* tweak : search.find(query).tweaks) found.push_back(tweak->id);
        return found;
    }
    std::string first(std::string_view query) const {
        const auto found = ids(query);
        return found.empty() ? "nothing" : found[0];
    }

    std::vector<std::string> inCatalogOrder(std::string_view group) const {
        std::vector<std::string> found;
        for (const Tweak& tweak : catalog.all())
            if (tweak.id.starts_with(group)) found.push_back(tweak.id);
        return found;
    }

    TweakCatalog catalog{"/Users/sam"};
    TweakSearch search{catalog, 26};
};

TEST_F(TweakSearchTest, TheRightRowComesFirst) {
    const std::vector<std::pair<std::string_view, std::vector<std::string_view>>> cases{
        {"finder.show_hidden",
         {"dotfiles", "hidden", "HID fil", "AppleShowAllFiles", "allfiles", "com.apple.finder showallf",
          "how do I show hidden files"}},
        {"finder.no_dsstore_on_shares", {".ds_store"}},
        {"dock.autohide", {"dock disappear"}},
        {"dock.autohide_instant", {"autohide-delay", "dock animation speed"}},
        {"dock.minimize_effect", {"genie"}},
        {"dock.position", {"dock left"}},
        {"shot.jpg", {"screenshot jpg"}},
        {"shot.folder", {"screenshots folder"}},
        {"shot.cursor", {"screenshot mouse"}},
        {"text.no_autocorrect", {"disable autocorrect"}},
        {"text.no_smart_quotes", {"curly quotes"}},
        {"kb.hold_to_repeat", {"pressandhold", "kb.hold_to_repeat"}},
        {"docs.save_to_disk", {"icloud"}},
        {"mc.keep_space_order", {"spaces order"}},
        {"priv.no_personalized_ads", {"ads"}},
        {"misc.always_show_scrollbars", {"scrollbar"}},
        {"misc.no_timemachine_offer", {"time machine"}},
    };
    for (const auto& [id, queries] : cases)
        for (const std::string_view query : queries) EXPECT_EQ(first(query), id) << query;
}

TEST_F(TweakSearchTest, EveryTweakIsFoundFirstByItsTitleAndItsKeys) {
    for (const Tweak& tweak : catalog.all()) {
        EXPECT_EQ(first(tweak.title), tweak.id);
        for (const Write& write : tweak.writes) EXPECT_EQ(first(write.key.rendered()), tweak.id);
        EXPECT_FALSE(tweak.searchWords.empty()) << tweak.id;
    }
}

TEST_F(TweakSearchTest, EveryWordCountsAndOnlyAsTheBeginningOfOne) {
    EXPECT_EQ(ids("dotfiles jpg"), std::vector<std::string>());  // each is somewhere, but not together
    EXPECT_EQ(ids("idden"), std::vector<std::string>());
    EXPECT_EQ(ids("hidden qqq"), std::vector<std::string>());
    EXPECT_EQ(ids("hiddenfiles"), std::vector<std::string>());
    EXPECT_FALSE(ids("usbstores").empty());  // DSDontWriteUSBStores
    EXPECT_FALSE(ids("stores").empty());
    for (const std::string_view within : {"sdont", "sbstores", "bstores", "tores"})
        EXPECT_EQ(ids(within), std::vector<std::string>()) << within;
    for (const std::string_view empty : {"", "  ", "...", "\xFF\xFE", "\t-"})
        EXPECT_EQ(search.find(empty), SearchResults()) << empty;
    // A filler alone is a word like any other.
    const auto found = ids("the");
    EXPECT_EQ(std::count(found.begin(), found.end(), "dock.autohide"), 1) << "Hide the Dock automatically";
}

TEST_F(TweakSearchTest, LetterCaseAndAccentsDoNotCount) {
    const auto plain = ids("typographic");
    ASSERT_FALSE(plain.empty());
    for (const std::string_view same :
         {"TYPOGRAPHIC", "typógraphîc", "typo\u0301graphic", "\xFFtypographic "})
        EXPECT_EQ(ids(same), plain) << same;
    EXPECT_EQ(ids("\u017FCREENSHOT"), ids("screenshot"));  // the long s
}

TEST_F(TweakSearchTest, EquallyGoodOnesStandInTheOrderOfTheCatalogAndPagesAreFoundToo) {
    EXPECT_EQ(ids("capture grab"), inCatalogOrder("shot."));
    std::vector<std::string> ofTheDock;  // many, and the word fits them all alike
    for (const std::string& id : ids("apple"))
        if (id.starts_with("dock.")) ofTheDock.push_back(id);
    EXPECT_EQ(ofTheDock, inCatalogOrder("dock."));
    EXPECT_EQ(search.find("startup").screens, std::vector{Screen::loginItems});
    EXPECT_EQ(search.find("camera").screens.at(0), Screen::privacy);
    EXPECT_EQ(search.find("log").screens, (std::vector{Screen::loginItems, Screen::journal}));
    EXPECT_EQ(search.find("dock").screens.at(0), Screen::dock);
}

TEST_F(TweakSearchTest, TakesUnderAMillisecondAndTimeInProportionToTheQuery) {
    using Clock = std::chrono::steady_clock;
    auto best = Clock::duration::max();  // of many: the machine may be busy with other things
    for (int i = 0; i < 200; ++i) {
        const auto begin = Clock::now();
        search.find("show s hidden f");
        best = std::min(best, Clock::now() - begin);
    }
    EXPECT_LT(best, std::chrono::milliseconds(1));

    std::string endless;
    for (int i = 0; i < 20'000; ++i) endless += "a hidden s ";
    const auto begin = Clock::now();
    EXPECT_FALSE(search.find(endless).tweaks.empty());
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(5));
}

TEST(ScreenTest, EveryGroupHasItsPageAndEveryPageItsWords) {
    for (const TweakGroup tweakGroup : allCases<TweakGroup>())
        EXPECT_EQ(group(screenOf(tweakGroup)), tweakGroup);
    std::set<std::string_view> symbols, purposes;
    for (const Screen screen : allCases<Screen>()) {
        symbols.insert(symbol(screen));
        purposes.insert(purpose(screen));
        EXPECT_TRUE(purpose(screen).ends_with('.')) << title(screen);
        EXPECT_FALSE(searchWords(screen).empty()) << title(screen);
    }
    EXPECT_EQ(symbols.size(), 12U);
    EXPECT_EQ(purposes.size(), 12U);
}

}  // namespace
