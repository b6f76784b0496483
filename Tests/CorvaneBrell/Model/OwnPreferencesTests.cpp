#include "CorvaneBrell/Model/OwnPreferences.h"

#include <gtest/gtest.h>

#include <cmath>

#include "BrellCore/Preferences/CFPreferencesStore.h"
#include "BrellCore/Preferences/PlistFileStore.h"
#include "Tests/Support/StandInDefaults.h"
#include "Tests/Support/Testing.h"

using namespace brell;
using namespace brell::testing;

namespace {

class OwnPreferencesTest : public ::testing::Test {
protected:
    static PrefKey key(std::string name) { return {"com.corvane.brell", std::move(name)}; }

    TemporaryFolder folder;
    PlistFileStore files{folder.path, OwnPreferences::domains()};
    OwnPreferences own{files};
};

TEST_F(OwnPreferencesTest, KeepsNumbersAndReadsNothingElse) {
    own.setNumber("width", 820.5);
    files.write(7, key("integer"));
    files.write(true, key("flag"));
    files.write("7", key("text"));
    files.write(7, key("odd"));
    files.markUnsupported(key("odd"));
    PlistFileStore later(folder.path, OwnPreferences::domains());
    EXPECT_EQ(OwnPreferences(later).number("width"), 820.5);
    EXPECT_EQ(own.number("integer"), 7.0);
    for (const char* name : {"flag", "text", "odd", "missing"})
        EXPECT_EQ(own.number(name), std::nullopt) << name;

    setContents(folder.path / "com.corvane.brell.plist", "not a property list");
    EXPECT_EQ(own.number("width"), std::nullopt);
    EXPECT_TRUE(thrownBy<StoreError>([&] { own.setNumber("width", 1); }));
}

TEST_F(OwnPreferencesTest, TheWindowsPlaceIsKeptAndOneThatCannotBeIsNone) {
    EXPECT_EQ(own.windowPlace(), std::nullopt);
    const WindowPlace place{820, 560, Screen::journal};
    own.keepWindowPlace(place);
    EXPECT_EQ(own.windowPlace(), place);
    for (const auto& [name, value] : std::initializer_list<std::pair<const char*, double>>{
             {"windowScreen", 12}, {"windowScreen", -1}, {"windowWidth", 32768}, {"windowHeight", -1}}) {
        own.keepWindowPlace(place);
        own.setNumber(name, value);
        EXPECT_EQ(own.windowPlace(), std::nullopt) << name << " " << value;
    }
    EXPECT_EQ(own.lastMacOS(), std::nullopt);
    for (const OperatingSystemVersion& version : {OperatingSystemVersion{26, 1, 0}, {15, 7, 12}}) {
        own.keepMacOS(version);
        EXPECT_EQ(own.lastMacOS(), version);
        own.keepMacOS({});
        EXPECT_EQ(own.lastMacOS(), version) << "no version is known";
    }
    for (const double odd : {-1.0, 0.0, 1e12, std::nan("")}) {
        own.setNumber("lastMacOS", odd);
        EXPECT_EQ(own.lastMacOS(), std::nullopt) << odd;
    }

    SeenItems seen{NameSet{"a", "b"}, std::nullopt};
    EXPECT_EQ(own.seenItems(), SeenItems());
    own.keepSeenItems(seen);
    EXPECT_EQ(own.seenItems(), seen);
    seen = {NameSet{}, NameSet{"c"}};
    own.keepSeenItems(seen);
    own.keepSeenItems({NameSet{}, std::nullopt});
    EXPECT_EQ(own.seenItems(), seen) << "a list that was not seen this time stays as it was kept";
    NameSet tooMany;
    while (tooMany.size() < 10'000) tooMany.insert(std::string(100, 'x') + std::to_string(tooMany.size()));
    own.keepSeenItems({tooMany, std::nullopt});
    EXPECT_EQ(own.seenItems().jobs, std::nullopt) << "as if it never was seen, so that nothing is new";
    files.write("text", key("seenLoginItems"));
    EXPECT_EQ(own.seenItems().jobs, std::nullopt);

    setContents(folder.path / "com.corvane.brell.plist", "not a property list");
    own.keepSeenItems(seen);
    own.keepWindowPlace(place);  // no reason to keep the window open
    own.keepMacOS({26, 1, 0});
    EXPECT_TRUE(own.removeAll()->starts_with("The preference file "));
}

TEST_F(OwnPreferencesTest, AfterAllIsRemovedNothingIsKeptAnyMore) {
    const auto defaults = std::make_shared<StandInDefaults>();
    CFPreferencesStore store(OwnPreferences::domains(), true, defaults);
    OwnPreferences kept(store);
    kept.keepMacOS({26, 1, 0});
    defaults->saveElsewhere(key("NSNavLastRootDirectory"), PlistValue{PlistDictionary{}});
    defaults->saveElsewhere({"com.apple.dock", "tilesize"}, PlistValue{true});
    defaults->locked = true;
    EXPECT_TRUE(kept.removeAll());
    defaults->locked = false;
    EXPECT_EQ(kept.removeAll(), std::nullopt);
    kept.keepWindowPlace({820, 560, Screen::journal});
    kept.keepSeenItems({NameSet{"a job"}, NameSet{"a task"}});
    EXPECT_EQ(defaults->saved.size(), 1u);
}

}  // namespace
