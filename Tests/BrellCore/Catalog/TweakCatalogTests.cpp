#include "BrellCore/Catalog/TweakCatalog.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "BrellCore/Preferences/NeverTouch.h"
#include "Tests/Support/Testing.h"

namespace brell {

namespace {

using Ids = std::set<std::string>;

class TweakCatalogTest : public ::testing::Test {
protected:
    const TweakCatalog catalog{"/Users/jo ann"};
};

}  // namespace

TEST_F(TweakCatalogTest, OffersEveryTweakInDisplayOrderAndFindsItById) {
    const auto offered = catalog.available(14);
    ASSERT_EQ(catalog.all().size(), 50u);
    ASSERT_EQ(offered.size(), catalog.all().size());
    for (std::size_t i = 0; i < offered.size(); ++i) {
        EXPECT_EQ(offered[i], &catalog.all()[i]);
        EXPECT_EQ(catalog.tweak(offered[i]->id), offered[i]);
    }
    EXPECT_TRUE(std::is_sorted(offered.begin(), offered.end(), [](const Tweak* one, const Tweak* other) {
        return one->group < other->group;
    }));
    EXPECT_EQ(catalog.all().front().id, "finder.show_hidden");
    EXPECT_EQ(catalog.tweak("finder.SHOW_HIDDEN"), nullptr);
    EXPECT_EQ(catalog.tweak(""), nullptr);
}

TEST_F(TweakCatalogTest, EveryWriteIsAllowedUnprotectedAndTheOnlyOneOfItsKey) {
    std::set<PrefKey> keys;
    for (const Tweak& tweak : catalog.all()) {
        EXPECT_FALSE(tweak.writes.empty()) << tweak.id;
        for (const Write& write : tweak.writes) {
            EXPECT_TRUE(TweakCatalog::allowedDomains().contains(write.key.domain)) << tweak.id;
            EXPECT_TRUE(keys.insert(write.key).second) << write.key.rendered();
            const PrefValue unset = write.systemDefault.value_or(write.target);
            EXPECT_EQ(unset.typeName(), write.target.typeName()) << tweak.id;
        }
    }
    for (const std::string& domain : TweakCatalog::allowedDomains())
        EXPECT_FALSE(NeverTouch::isForbiddenDomain(domain)) << domain;
    EXPECT_EQ(TweakCatalog::allowedDomains().size(), 9u);
    EXPECT_TRUE(TweakCatalog::allowedDomains().contains("com.apple.Spotlight"));
}

TEST_F(TweakCatalogTest, EveryChoiceHasOneValueOfTheRightTypeForEachWrite) {
    std::size_t choiceTweaks = 0;
    for (const Tweak& tweak : catalog.all()) {
        const auto* kind = std::get_if<ChoiceKind>(&tweak.kind);
        if (!kind) continue;
        ++choiceTweaks;
        Ids choiceIds;
        bool offersTarget = false;
        for (const Choice& choice : kind->choices) {
            EXPECT_TRUE(choiceIds.insert(choice.id).second) << tweak.id << " " << choice.id;
            ASSERT_EQ(choice.values.size(), tweak.writes.size()) << tweak.id << " " << choice.id;
            for (std::size_t i = 0; i < choice.values.size(); ++i)
                EXPECT_EQ(choice.values[i].typeName(), tweak.writes[i].target.typeName()) << tweak.id;
            offersTarget = offersTarget || choice.values == tweak.targets();
        }
        EXPECT_TRUE(offersTarget) << tweak.id;
    }
    EXPECT_EQ(choiceTweaks, 4u);
}

TEST_F(TweakCatalogTest, SaysThisOfEachTweak) {
    std::string said;
    for (const Tweak& tweak : catalog.all()) {
        const auto& [what, value, takesEffect, risk, undo] = tweak.explanation;
        said += tweak.id + ": " + tweak.title + "\n";
        for (const std::string& line : {tweak.renderedWrites(), what, value, takesEffect, risk, undo})
            said += "    " + line + "\n";
    }
    EXPECT_EQ(said, testing::sample("Catalog/tweaks.txt"));
    EXPECT_EQ(catalog.tweak("dock.magnify")->domains(), Ids{"com.apple.dock"});
}

TEST(CatalogHomeTest, PathsStartAtTheHomeFolderHoweverItIsWritten) {
    for (const testing::Texts& row : testing::sampleRows("Catalog/homes.txt")) {
        const TweakCatalog catalog(row[0]);
        EXPECT_EQ(catalog.homeFileURL(), row[2]);
        EXPECT_EQ(catalog.tweak("shot.folder")->targets(), std::vector<PrefValue>{row[1]});
        EXPECT_EQ(catalog.tweak("finder.new_window_home")->targets(),
                  (std::vector<PrefValue>{"PfHm", row[2]}));
    }
}

}  // namespace brell
