#include "CorvaneBrell/Platform/OperatingSystem.h"

#include <gtest/gtest.h>

#include "Tests/Support/Testing.h"

using namespace brell;
using namespace brell::testing;

TEST(PlatformTest, AVersionIsReadAsFarAsItGoesAndCountedAsReleased) {
    EXPECT_EQ(parseOSVersion("26.1"), (OperatingSystemVersion{26, 1, 0}));
    EXPECT_EQ(parseOSVersion("6.1.0-18-amd64"), (OperatingSystemVersion{6, 1, 0}));
    EXPECT_EQ(parseOSVersion("none"), OperatingSystemVersion());
    EXPECT_EQ(releasedVersion({16, 2, 1}).text(), "26.2.1");
    for (const int major : {14, 15, 26}) EXPECT_EQ(releasedVersion({major, 0, 0}).major, major);
}

TEST(PlatformTest, TheVersionThatTheSystemWroteDownIsReadAndNeverGuessedAt) {
    const TemporaryFolder folder;
    const auto file = folder.path / "version.plist";
    EXPECT_EQ(versionInFile(file), std::nullopt);
    const auto versionOf = [&](const std::string& contents) {
        setContents(file, "<plist><dict><key>ProductBuildVersion</key><string>26A5</string>" + contents +
                              "</dict></plist>");
        return versionInFile(file);
    };
    const std::string key = "<key>ProductVersion</key>";
    EXPECT_EQ(versionOf(key + "<string>27.0.1</string>"), (OperatingSystemVersion{27, 0, 1}));
    EXPECT_EQ(versionOf(key + "<string>16.2</string>"), (OperatingSystemVersion{16, 2, 0}));
    for (const char* unknown :
         {"", "<string></string>", "<string>soon</string>", "<real>27.0</real>", "<array/>", "<strin"})
        EXPECT_EQ(versionOf(*unknown ? key + unknown : ""), std::nullopt) << unknown;
    setContents(file, "<plist><array/></plist>");
    EXPECT_EQ(versionInFile(file), std::nullopt);
    EXPECT_EQ(versionInFile(folder.path), std::nullopt);
}
