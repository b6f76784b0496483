#include "CorvaneBrell/Model/TweakSearch.h"

#include "Tests/Support/Testing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <set>

using namespace brell;
using namespace brell::testing;

namespace {

class TweakSearchTest : public ::testing::Test {
protected:
    Texts ids(std::string_view query) const {
        Texts found;
        for (const Tweak* tweak : search.find(query).tweaks) found.push_back(tweak->id);
        return found;
    }
    std::string first(std::string_view query) const {
        const auto found = ids(query);
        return found.empty() ? "nothing" : found[0];
    }

    // Each with the page and, where it stands on that, its id; then the login items.
    Texts places(std::string_view query) const {
        Texts found;
        for (const Place* place : search.find(query).places)
            found.push_back(std::string(rawValue(place->screen)) +
                            (place->id.empty() ? "" : " " + place->id));
        for (const std::size_t item : search.find(query).items)
            found.push_back("item " + std::to_string(item));
        return found;
    }

    Texts inCatalogOrder(std::string_view group) const {
        Texts found;
        for (const Tweak& tweak : catalog.all())
            if (tweak.id.starts_with(group)) found.push_back(tweak.id);
        return found;
    }

    TweakCatalog catalog{"/Users/sam"};
    TweakSearch search{catalog, 26};
};

TEST_F(TweakSearchTest, TheRightRowComesFirst) {
    for (const Texts& row : sampleRows("Search/first.txt"))
        for (std::size_t i = 1; i < row.size(); ++i) EXPECT_EQ(first(row[i]), row[0]) << row[i];
}

TEST_F(TweakSearchTest, EveryTweakIsFoundFirstByItsTitleItsKeysAndWhatItDoes) {
    for (const Tweak& tweak : catalog.all()) {
        for (const std::string_view own : {tweak.title, tweak.id, tweak.explanation.what})
            EXPECT_EQ(first(own), tweak.id) << own;
        for (const Write& write : tweak.writes) EXPECT_EQ(first(write.key.rendered()), tweak.id);
        EXPECT_FALSE(tweak.searchWords.empty()) << tweak.id;
    }
}

TEST_F(TweakSearchTest, EveryWordCountsAndOnlyAsTheBeginningOfOne) {
    EXPECT_EQ(ids("dotfiles jpg"), Texts());  // each is somewhere, but not together
    EXPECT_EQ(ids("idden"), Texts());
    EXPECT_EQ(ids("hidden qqq"), Texts());
    EXPECT_EQ(ids("hiddenfiles"), Texts());
    for (const std::string_view mistyped : {"hiden", "hodden", "hidedn", "hiddne"})
        EXPECT_EQ(first(mistyped), "finder.show_hidden") << mistyped;
    for (const std::string_view wrong : {"hidddden", "hoddne", "xidden", "hxd"})
        EXPECT_EQ(ids(wrong), Texts()) << wrong;
    EXPECT_FALSE(ids("usbstores").empty());  // DSDontWriteUSBStores
    EXPECT_FALSE(ids("stores").empty());
    for (const std::string_view within : {"sdont", "sbstores", "bstores", "tores"})
        EXPECT_EQ(ids(within), Texts()) << within;
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
    Texts ofTheDock;  // many, and the word fits them all alike
    for (const std::string& id : ids("apple"))
        if (id.starts_with("dock.")) ofTheDock.push_back(id);
    EXPECT_EQ(ofTheDock, inCatalogOrder("dock."));
    EXPECT_EQ(places("startup"), Texts{"loginItems"});
    EXPECT_EQ(places("camera"), (Texts{"privacy camera", "privacy"}));
    EXPECT_EQ(places("log"), (Texts{"loginItems", "journal"}));
    EXPECT_EQ(places("dock").at(0), "dock");
}

TEST_F(TweakSearchTest, LoginItemsAreFoundByNameAppAndSubtitleUntilOthersAreThere) {
    const auto item = [](const std::string& title, const std::string& subtitle) {
        LoginItemRow row{};
        row.title = title;
        row.subtitle = subtitle;
        row.explanation.app = "Kestrel Suite";
        return row;
    };
    search.setLoginItems({item("Dispatch", "com.kestrelworks.notes · "), item("Notes", "acme · "),
                          item("Dock helper", "acme · ")});
    EXPECT_EQ(places("dispatch"), Texts{"item 0"});
    EXPECT_EQ(places("notes"), (Texts{"item 1", "item 0"})) << "the title counts most";
    EXPECT_EQ(places("kestrel suite").size(), 3u);
    EXPECT_EQ(places("dispacth"), Texts{"item 0"}) << "two letters are swapped";
    EXPECT_EQ(places("dock"), (Texts{"dock", "item 2"}));
    search.setLoginItems({item("Other", "")});
    EXPECT_EQ(places("dispatch"), Texts());
    EXPECT_EQ(places("other").back(), "item 0");
}

TEST_F(TweakSearchTest, AnEndlessQueryIsAnswered) {
    std::string endless;
    for (int i = 0; i < 20'000; ++i) endless += "a hidden s ";
    EXPECT_FALSE(ids(endless).empty());
}

TEST(ScreenTest, EveryGroupHasItsPageAndEveryPageItsWords) {
    for (const TweakGroup tweakGroup : allCases<TweakGroup>())
        EXPECT_EQ(group(screenOf(tweakGroup)), tweakGroup);
    std::set<std::string_view> symbols, purposes;
    for (const Screen screen : allCases<Screen>()) {
        EXPECT_TRUE(symbols.insert(symbol(screen)).second && purposes.insert(purpose(screen)).second)
            << title(screen);
        EXPECT_FALSE(searchWords(screen).empty()) << title(screen);
    }
}

}  // namespace
