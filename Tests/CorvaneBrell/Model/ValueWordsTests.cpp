#include "CorvaneBrell/Model/ValueWords.h"

#include <gtest/gtest.h>

#include "BrellCore/Catalog/TweakCatalog.h"
#include "CorvaneBrell/Model/LoginItemWords.h"

namespace brell {

namespace {

constexpr std::nullopt_t absent = std::nullopt;

std::vector<StoredValue> stored(const std::vector<std::optional<PrefValue>>& values) {
    std::vector<StoredValue> all;
    for (const auto& value : values) all.push_back(value ? StoredValue(*value) : StoredValue::absent());
    return all;
}

}  // namespace

TEST(ValueWordsTest, ValuesAreSaidAsPeopleSayThemWithoutTheirKeys) {
    const TweakCatalog catalog("/Users/jo");
    const std::string folder(300, 'x');
    const struct {
        const char* tweakID;
        std::vector<std::optional<PrefValue>> values;
        std::string words;
    } rows[] = {
        {"dock.size", {36}, "Small"},
        {"dock.size", {41}, "41"},
        {"dock.size", {absent}, "not set"},
        {"dock.no_recents", {false}, "On"},
        {"dock.no_recents", {true}, "Off"},
        {"dock.magnify", {false, absent}, "false and not set"},
        {"dock.magnify", {true, 80}, "On"},
        {"finder.drives_on_desktop", {false, true, true}, "Off"},
        {"finder.search_current_folder", {"SC\nev"}, "\"SC ev\""},
        {"shot.folder", {"/Users/jo/Pictures"}, "~/Pictures"},
        {"shot.folder", {"/Users/joanna"}, "/Users/joanna"},
        {"shot.folder", {"/" + folder}, "/" + folder.substr(0, 199) + "..."},
        {"shot.folder", {absent}, "not set"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(valueWords(*catalog.tweak(row.tweakID), stored(row.values), catalog.home()), row.words)
            << row.tweakID;
    EXPECT_EQ(intervalWords(3600), "every hour");
    EXPECT_EQ(intervalWords(86400), "once a day");
    EXPECT_EQ(intervalWords(5400), "every 90 minutes");
    EXPECT_EQ(intervalWords(61), "every 61 seconds");
    LoginItemRow item{};
    item.isCrashLooping = true;
    EXPECT_EQ(
        conditionWords(item, {"/opt/gone", {}, 0}),
        (std::vector<std::string>{"It keeps crashing and restarting.", "Its program is missing: /opt/gone.",
                                  "Its file belongs to the system's administrator, root."}));
    EXPECT_EQ(noteWords(*catalog.tweak("finder.show_hidden")), "Medium risk · Relaunches Finder");
    EXPECT_EQ(noteWords(*catalog.tweak("anim.no_window_animation")), "Experimental");
    EXPECT_EQ(noteWords(*catalog.tweak("shot.jpg")), "");
}

}  // namespace brell
