#include "CorvaneBrell/Platform/OperatingSystem.h"

#include <gtest/gtest.h>

using namespace brell;

TEST(PlatformTest, AVersionIsReadAsFarAsItGoesAndCountedAsReleased) {
    EXPECT_EQ(parseOSVersion("26.1"), (OperatingSystemVersion{26, 1, 0}));
    EXPECT_EQ(parseOSVersion("6.1.0-18-amd64"), (OperatingSystemVersion{6, 1, 0}));
    EXPECT_EQ(parseOSVersion("none"), OperatingSystemVersion());
    EXPECT_EQ(releasedVersion({16, 2, 1}).text(), "26.2.1");
    for (const int major : {14, 15, 26}) EXPECT_EQ(releasedVersion({major, 0, 0}).major, major);
}
