#include "CorvaneBrell/Platform/OperatingSystem.h"

#include <gtest/gtest.h>

#include "CorvaneBrell/Platform/RunningApplications.h"
#include "CorvaneBrell/Platform/SettingsPanes.h"
#include "CorvaneBrell/Platform/Symbols.h"

using namespace brell;

TEST(PlatformTest, AVersionIsReadAsFarAsItGoesAndCountedAsReleased) {
    EXPECT_EQ(parseOSVersion("26.1"), (OperatingSystemVersion{26, 1, 0}));
    EXPECT_EQ(parseOSVersion("6.1.0-18-amd64"), (OperatingSystemVersion{6, 1, 0}));
    EXPECT_EQ(parseOSVersion("none"), OperatingSystemVersion());
    EXPECT_EQ(releasedVersion({16, 2, 1}).text(), "26.2.1");
    for (const int major : {14, 15, 26}) EXPECT_EQ(releasedVersion({major, 0, 0}).major, major);
}

#ifndef __APPLE__
TEST(PlatformTest, WhereThereIsNoMacEverythingIsAnsweredAndNothingHappens) {
    const auto applications = systemApplications();
    int answers = 0;
    applications->open("/System/Library/CoreServices/Dock.app", [&] { ++answers; });
    EXPECT_EQ(applications->running("com.apple.dock"), std::vector<RunningApplications::Instance>());
    EXPECT_TRUE(applications->hasTerminated(1));
    openSettingsPane("x-apple.systempreferences:com.apple.Spotlight-Settings.extension", [&](bool opened) {
        ++answers;
        EXPECT_FALSE(opened);
    });
    EXPECT_EQ(answers, 2);
    EXPECT_EQ(systemSymbol("folder", 16, 2.0), std::nullopt);
}
#endif
