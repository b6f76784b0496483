#include "BrellCore/Catalog/Tweak.h"

#include <gtest/gtest.h>

namespace brell {

namespace {

const std::vector<Write> oneSwitch{{{"com.apple.dock", "autohide"}, true, false}};
const std::vector<Write> twoNumbers{{{"com.apple.dock", "autohide-delay"}, 0.0, std::nullopt},
                                    {{"NSGlobalDomain", "largesize"}, 80, std::nullopt}};

std::string valueText(const std::vector<Write>& writes, const TweakKind& kind) {
    return explain(writes, kind, EffectClass::immediate, Risk::low, "", "").value;
}

}  // namespace

TEST(ExplanationTest, NamesTheValuesAsTheKindOfControlOffersThem) {
    EXPECT_EQ(valueText(oneSwitch, ToggleKind()), "true");
    EXPECT_EQ(valueText(twoNumbers, ToggleKind()), "0.0, 80");
    EXPECT_EQ(valueText(oneSwitch, FolderKind()), "the folder you pick");
    EXPECT_EQ(
        valueText(twoNumbers, ChoiceKind{{{"small", "Small", {0.5, 36}}, {"plain", "Plain", {"x", true}}}}),
        "Small: 0.5, 36; Plain: \"x\", true; macOS default: the key is removed");
}

TEST(ExplanationTest, RiskAddsTheNoteAndWhatExperimentalMeans) {
    const auto riskText = [](Risk risk, std::string_view note) {
        return explain(oneSwitch, ToggleKind(), EffectClass::immediate, risk, "What.", note).risk;
    };
    const std::string experimental =
        "Experimental: no visible effect has been confirmed on every macOS version yet; excluded from "
        "presets";

    EXPECT_EQ(riskText(Risk::low, ""), "Low");
    EXPECT_EQ(riskText(Risk::medium, "Mind the gap."), "Medium. Mind the gap.");
    EXPECT_EQ(riskText(Risk::experimental, ""), experimental);
    EXPECT_EQ(riskText(Risk::experimental, "Mind the gap."), experimental + ". Mind the gap.");
}

TEST(ExplanationTest, UndoEndsWithWhatTheEffectLeavesToDo) {
    const std::string shared =
        "Turn it off (the switch, the \"macOS default\" choice, or \"Restore previous location\"): Brell "
        "writes the "
        "original value it saved back, or removes the key when there was none.";
    const std::pair<EffectClass, std::string> additions[] = {
        {EffectClass::immediate, ""},
        {EffectClass::nextAppLaunch, " Apps already open keep the old behaviour until they are reopened."},
        {EffectClass::finderRelaunch, " Brell offers to relaunch Finder again so the change disappears."},
        {EffectClass::dockRelaunch, " Brell offers to relaunch the Dock again so the change disappears."}};

    for (const auto& [effect, addition] : additions) {
        const Explanation text = explain(oneSwitch, ToggleKind(), effect, Risk::low, "What.", "");
        EXPECT_EQ(text, (Explanation{"What.", "true", std::string(label(effect)), "Low", shared + addition}));
    }
}

TEST(TweakTest, IsAvailableEverywhereUnlessItSaysWhere) {
    Tweak tweak{};
    EXPECT_TRUE(tweak.isAvailable(0));

    tweak.availableMajors = {14, 15};
    tweak.confirmedOn = {15};
    EXPECT_TRUE(tweak.isAvailable(14));
    EXPECT_FALSE(tweak.isAvailable(26));
    EXPECT_TRUE(tweak.isConfirmed(15));
    EXPECT_FALSE(tweak.isConfirmed(14));

    tweak.availableMajors = std::set<int>();
    EXPECT_FALSE(tweak.isAvailable(14));
}

}  // namespace brell
