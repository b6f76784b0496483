#include "CorvaneBrell/Model/PresetPlan.h"

#include <gtest/gtest.h>

#include "Tests/Support/EngineFixture.h"

using namespace brell;
using namespace brell::testing;

namespace {

const PrefKey autohide{"com.apple.dock", "autohide"};
const PrefKey delay{"com.apple.dock", "autohide-delay"};
const PrefKey modifier{"com.apple.dock", "autohide-time-modifier"};

class PresetPlanTest : public ::testing::Test, protected EngineFixture {
protected:
    PresetPlan plan(std::vector<std::string> ids, int major = 26) {
        const Preset preset{"mine", "Mine", "", std::move(ids)};
        TweakStatuses statuses;
        for (const Tweak& one : catalog.all())
            if (!errors.contains(one.id)) statuses.emplace(one.id, engine.status(one));
        return planPreset(preset, {catalog, major, statuses, errors, journal.all()});
    }
    using Outcome = decltype(PresetStep::outcome);
    Outcome outcome(const std::string& id) { return plan({id}).steps.at(0).outcome; }

    TweakStatusErrors errors;
};

TEST_F(PresetPlanTest, TellsFromWhatToWhatEachKeyWouldChange) {
    files.write(0.5, delay);
    files.write(0.2, modifier);
    const PresetPlan planned =
        plan({"dock.autohide_instant", "dock.foo", "mc.fast_animation", "dock.autohide"});
    EXPECT_EQ(planned.steps,
              (std::vector<PresetStep>{
                  {"dock.autohide_instant", "Show the hidden Dock instantly",
                   WouldChange{{{delay, PrefValue(0.5), PrefValue(0.0)}}, "from 0.5 and 0.2 to On"}},
                  {"dock.autohide", "Hide the Dock automatically",
                   WouldChange{{{autohide, {}, PrefValue(true)}}, "from not set to On"}}}));
    EXPECT_EQ(planned.unknown, Texts{"dock.foo"});
    EXPECT_EQ(planned.experimental, Texts{"mc.fast_animation"});
    EXPECT_EQ((KeyChange{autohide, {}, PrefValue(true)}).rendered(),
              "com.apple.dock autohide from absent to true");
}

TEST_F(PresetPlanTest, LeavesAloneWhatIsAlreadySo) {
    files.write(true, autohide);             // before us
    engine.apply(tweak("dock.no_recents"));  // by us
    engine.apply(tweak("dock.size"), std::vector<PrefValue>{48}, "medium");
    const PresetPlan mixed =
        plan({"dock.autohide", "dock.no_recents", "dock.size", "shot.date_in_name", "dock.magnify"});
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(mixed.steps.at(i).outcome, Outcome(AlreadySo{})) << mixed.steps[i].title;
    EXPECT_EQ(mixed.toApply(), Texts{"dock.magnify"});
}

TEST_F(PresetPlanTest, RefusesInTheWordsOfTheEngine) {
    files.markByHost(autohide);
    files.markForced({"com.apple.dock", "show-recents"});
    files.markUnsupported({"com.apple.dock", "launchanim"});
    engine.apply(tweak("dock.size"), std::vector<PrefValue>{64}, "large");
    engine.resetToDefault(tweak("dock.minimize_into_app"));
    engine.apply(tweak("dock.magnify"));
    files.write(false, {"com.apple.dock", "magnification"});  // drifted
    interrupt("dock.translucent_hidden");
    interrupt("dock.running_only");
    files.markByHost({"com.apple.dock", "static-only"});  // the active change is the reason given first

    for (const std::string id :
         {"dock.autohide", "dock.no_recents", "dock.no_bounce", "dock.size", "dock.minimize_into_app",
          "dock.magnify", "dock.running_only", "dock.translucent_hidden"}) {
        const std::string reason = messageOf([&] { engine.apply(tweak(id)); });
        ASSERT_FALSE(reason.empty()) << id;
        EXPECT_EQ(outcome(id), Outcome(WouldBeRefused{reason})) << id;
    }
    errors.emplace("dock.position", "The file is damaged.");
    EXPECT_EQ(outcome("dock.position"), Outcome(WouldBeRefused{"The file is damaged."}));
    EXPECT_EQ(plan({"dock.position", "dock.size"}).toApply(), Texts());
}

TEST_F(PresetPlanTest, WhatIsActiveGoesIntoAPresetWithItsOwnTargetsOrSaysWhyNot) {
    engine.apply(tweak("text.no_smart_quotes"));
    engine.apply(tweak("dock.autohide"));
    engine.apply(tweak("finder.view_style"), std::vector<PrefValue>{"Nlsv"}, "list");  // its own target
    engine.apply(tweak("dock.size"), std::vector<PrefValue>{64}, "large");
    engine.apply(tweak("shot.folder"));
    engine.apply(tweak("mc.fast_animation"));
    engine.resetToDefault(tweak("dock.no_recents"));
    engine.restore(engine.apply(tweak("dock.position"), std::vector<PrefValue>{"left"}, "left").id, false);
    interrupt("finder.path_bar");
    engine.finishAgentChange(
        engine.beginAgentChange("com.acme.agent",
                                {"com.acme.agent", "/Users/sam/a.plist", true, AgentOverride::absent}),
        EntryStatus::applied, std::nullopt);
    std::vector<JournalEntry> entries = journal.all();
    entries.push_back(entries[0]);
    entries.back().tweakID = "dock.future";
    entries.push_back(engine.apply(tweak("finder.new_window_home")));
    entries.back().writes.pop_back();  // made by a version whose tweak wrote one key fewer

    std::string rows;
    const ChangeTitles titles(catalog);
    for (const ExportRow& row : exportRows(entries, titles))
        rows += row.tweakID + "\t" + row.title + "\t" + row.whyNot + "\n";
    EXPECT_EQ(rows, sample("Words/export-rows.txt"));
    const Preset preset = ownPreset("My Été", {"finder.view_style", "text.no_smart_quotes"});
    EXPECT_EQ(preset.id, "my-été");
    EXPECT_EQ(PresetFile::decode(PresetFile::encode(preset), catalog).preset.tweakIDs, preset.tweakIDs);
}

}  // namespace
