#include "BrellCore/Catalog/TweakCatalog.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "BrellCore/Preferences/NeverTouch.h"

namespace brell {

namespace {

using Ids = std::set<std::string>;

class TweakCatalogTest : public ::testing::Test {
protected:
    const TweakCatalog catalog{"/Users/jo ann"};

    template <class Predicate>
    Ids idsWhere(Predicate predicate) const {
        Ids ids;
        for (const Tweak& tweak : catalog.all())
            if (predicate(tweak)) ids.insert(tweak.id);
        return ids;
    }
};

bool isOnWithoutAnyKey(const Tweak& tweak) {
    return std::all_of(tweak.writes.begin(), tweak.writes.end(),
                       [](const Write& write) { return write.systemDefault == write.target; });
}

}  // namespace

TEST_F(TweakCatalogTest, OffersEveryTweakInDisplayOrderAndFindsItById) {
    const auto offered = catalog.available(14);
    ASSERT_EQ(offered.size(), 50u);
    ASSERT_EQ(catalog.all().size(), 50u);
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

TEST_F(TweakCatalogTest, KnowsTheExceptions) {
    EXPECT_EQ(idsWhere([](const Tweak& tweak) { return !tweak.isConfirmed(26); }),
              (Ids{"finder.drives_on_desktop", "finder.no_extension_warning", "text.no_autocorrect",
                   "text.no_smart_dashes", "text.no_double_space_period", "misc.always_show_scrollbars"}));
    EXPECT_EQ(idsWhere([](const Tweak& tweak) { return tweak.risk == Risk::experimental; }),
              (Ids{"mc.fast_animation", "anim.no_window_animation", "priv.no_personalized_ads"}));
    EXPECT_EQ(idsWhere(isOnWithoutAnyKey), (Ids{"dock.position", "shot.date_in_name"}));
    EXPECT_EQ(idsWhere([](const Tweak& tweak) { return std::holds_alternative<FolderKind>(tweak.kind); }),
              Ids{"shot.folder"});
    EXPECT_EQ(catalog.tweak("misc.always_show_scrollbars")->effect, EffectClass::nextAppLaunch);
}

TEST_F(TweakCatalogTest, DerivesTheTextsOfATweakFromItsRow) {
    const Tweak& hidden = *catalog.tweak("finder.show_hidden");

    EXPECT_EQ(catalog.tweak("dock.magnify")->domains(), Ids{"com.apple.dock"});
    EXPECT_EQ(catalog.tweak("dock.magnify")->renderedWrites(),
              "com.apple.dock magnification = true; com.apple.dock largesize = 80");
    EXPECT_EQ(hidden.explanation.risk,
              "Medium. System files become visible and can be dragged to the Trash by mistake.");
    EXPECT_EQ(hidden.explanation.takesEffect,
              "After Finder is relaunched (Brell offers to do it; open Finder windows close and reopen)");
}

TEST(CatalogHomeTest, PathsStartAtTheHomeFolderHoweverItIsWritten) {
    struct Case {
        std::string home, screenshots, url;
    };
    for (const auto& [home, screenshots, url] :
         {Case{"/Users/jo ann", "/Users/jo ann/Pictures/Screenshots", "file:///Users/jo%20ann/"},
          Case{"/Users/jo/", "/Users/jo/Pictures/Screenshots", "file:///Users/jo/"},
          Case{"/Users/zo\u00EB", "/Users/zo\u00EB/Pictures/Screenshots", "file:///Users/zo%C3%AB/"},
          Case{"/", "/Pictures/Screenshots", "file:///"}}) {
        const TweakCatalog catalog(home);
        EXPECT_EQ(catalog.homeFileURL(), url);
        EXPECT_EQ(catalog.tweak("shot.folder")->targets(), std::vector<PrefValue>{screenshots});
        EXPECT_EQ(catalog.tweak("finder.new_window_home")->targets(), (std::vector<PrefValue>{"PfHm", url}));
    }
}

}  // namespace brell
