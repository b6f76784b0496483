// The XML form of property lists, and what both forms share.
#include "BrellCore/Support/PropertyList.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>

#include "BrellCore/Support/Numbers.h"
#include "Tests/Support/Testing.h"

namespace brell {

namespace {

using namespace testing;

constexpr auto least = std::numeric_limits<std::int64_t>::min();
constexpr auto most = std::numeric_limits<std::int64_t>::max();

PlistDictionary dictionaryOf(std::vector<PlistEntry> entries) {
    return {std::move(entries)};
}

std::string repeated(std::string_view piece, std::size_t times) {
    std::string text;
    for (std::size_t i = 0; i < times; ++i) text += piece;
    return text;
}

std::string inPlist(std::string_view value) {
    return "<plist>" + std::string(value) + "</plist>";
}

PlistValue readValue(std::string_view value) {
    return readPropertyList(inPlist(value));
}

PlistValue nestedArrays(int levels) {
    PlistValue value{PlistArray{}};
    for (int i = 1; i < levels; ++i) {
        PlistArray around;
        around.push_back(std::move(value));
        value = {std::move(around)};
    }
    return value;
}

struct Sample {
    std::string_view written;
    PlistValue meant;
};

}  // namespace

TEST(XmlPropertyListTest, EveryElementMeansItsKind) {
    using namespace std::string_literals;
    const Sample samples[] = {
        {"<true/>", {true}},
        {"<false></false>", {false}},
        {"<string/>", {""s}},
        {"<string> a\tb \n</string>", {" a\tb \n"s}},
        {"<string>  </string>", {"  "s}},
        {"<string>&lt;&gt;&amp;&apos;&quot;&#65;&#x42;&#32;&#13;&#0010;</string>", {"<>&'\"AB \r\n"s}},
        {"<string>&#xE000;&#xFFFD;&#x10000;&#x10FFFF;</string>", {"\uE000\uFFFD\U00010000\U0010FFFF"s}},
        {"<string>&amp;lt;</string>", {"&lt;"s}},
        {"<string>a\r\nb\rc</string>", {"a\r\nb\rc"s}},
        {"<string>a<!-- <b> & -->b<?c d?>e<![CDATA[<&amp;\r\n]]>f</string>", {"abe<&amp;\r\nf"s}},
        {"<data/>", {PlistData{}}},
        {"<data>\n\tAP8\n\tQ/w==\n</data>", {PlistData{"\0\xFF\x10\xFF"s}}},
        {"<array> <!-- a --> <integer>1</integer>\n<array/></array>",
         {PlistArray{{std::int64_t{1}}, {PlistArray{}}}}},
        {"<dict><key>b</key><true/><key></key><string>x</string></dict>",
         {dictionaryOf({{"", {"x"s}}, {"b", {true}}})}},
    };
    for (const Sample& sample : samples) EXPECT_EQ(readValue(sample.written), sample.meant) << sample.written;
    for (const Texts& row : sampleRows("PropertyList/numbers.txt")) {
        const PlistValue meant = row[1] == "integer" ? PlistValue{parseInteger(row[2]).value()}
                                 : row[1] == "real"  ? PlistValue{parseReal(row[2]).value()}
                                 : row[1] == "date"  ? PlistValue{PlistDate{parseReal(row[2]).value()}}
                                                     : PlistValue{PlistBigInteger{row[2]}};
        EXPECT_EQ(readValue(row[0]), meant) << row[0];
    }
    EXPECT_TRUE(std::isnan(*readValue("<real>NaN</real>").as<double>()));
}

TEST(XmlPropertyListTest, WhatMayStandAroundThePlistElementIsPassedOver) {
    for (const std::string_view document :
         {"\xEF\xBB\xBF<?xml version='1.0' encoding='Utf-8'?><plist><true/></plist>",
          "\n<!-- a --><!DOCTYPE plist [<!ENTITY a 'b'>]>\n<plist version='1.0'> <true/> </plist>\n<!-- b "
          "-->\n",
          "<?xml version='1.0'?>\n<?other thing?>\n<plist><!-- a --><true/></plist>"})
        EXPECT_EQ(readPropertyList(document), PlistValue{true}) << document;
}

TEST(PropertyListTest, WhatIsNoneIsRefusedWithItsReason) {
    for (const Texts& row : sampleRows("PropertyList/refused.txt")) {
        const auto refusal =
            failureOf<PlistError>([&] { readPropertyList(sample("PropertyList/" + row[0])); });
        ASSERT_TRUE(refusal) << row[0];
        EXPECT_NE(refusal->reason.find(row[1]), std::string::npos) << row[0] << ": " << refusal->reason;
    }
    EXPECT_EQ(messageOf([] { readValue("<integer>1k</integer>"); }),
              "The property list is refused: \"1k\" at byte 8 is no integer.");
}

TEST(XmlPropertyListTest, DepthAndCountAreLimited) {
    const PlistValue deepest = nestedArrays(128);
    const std::string text = writeXmlPropertyList(deepest);
    EXPECT_EQ(readPropertyList(text), deepest);

    const PlistFailure tooDeep{"it nests more than 128 levels"};
    EXPECT_EQ(failureOf<PlistError>([] { writeXmlPropertyList(nestedArrays(129)); }), tooDeep);
    for (const std::size_t pairs : {64u, 150'000u}) {
        const std::string deep = inPlist(repeated("<array><dict><key>a</key>", pairs) + "<true/>" +
                                         repeated("</dict></array>", pairs));
        EXPECT_EQ(failureOf<PlistError>([&] { readPropertyList(deep); }), tooDeep);
    }
    const std::string opened = "<plist>" + repeated("<dict><key>a</key>", 300'000);
    EXPECT_NE(messageOf([&] { readPropertyList(opened); }).find("not well-formed"), std::string::npos);

    const PlistFailure tooMany{"it holds more than a million values"};
    PlistValue many{PlistArray(999'999, {true})};
    EXPECT_EQ(readPropertyList(writeXmlPropertyList(many)), many);
    std::get<PlistArray>(many.payload).push_back({true});
    EXPECT_EQ(failureOf<PlistError>([&] { writeXmlPropertyList(many); }), tooMany);
    const std::string written = inPlist("<array>" + repeated("<true/>", 1'000'000) + "</array>");
    EXPECT_EQ(failureOf<PlistError>([&] { readPropertyList(written); }), tooMany);
}

TEST(PropertyListTest, AFileCutAtAnyByteIsRefused) {
    for (const char* name : {"PropertyList/kinds.xml.plist", "PropertyList/kinds.binary.plist"}) {
        const std::string whole = sample(name);
        ASSERT_TRUE(readPropertyList(whole).as<PlistDictionary>()) << name;
        for (std::size_t size = 0; size + 1 < whole.size(); ++size)  // the last byte may be a line feed
            EXPECT_TRUE(thrownBy<PlistError>([&] { readPropertyList(whole.substr(0, size)); })) << size;
    }
}

TEST(XmlPropertyListTest, TheWrittenFormIsTheSystemsOwn) {
    const PlistValue value{
        dictionaryOf({{"b", {PlistArray{{true}, {std::int64_t{-1}}, {0.1}, {PlistArray{}}}}},
                      {"a&<>", {std::string("\"x\"\r\n")}},
                      {"B", {PlistData{std::string(60, '\0')}}},
                      {"d", {PlistDate{86'399}}},
                      {"e", {PlistDictionary{}}}})};
    EXPECT_EQ(writeXmlPropertyList(value), sample("PropertyList/written.plist"));
}

TEST(XmlPropertyListTest, WrittenValuesReadBackExactlyUnderAnyLocale) {
    const std::string localeBefore = std::setlocale(LC_ALL, nullptr);
    for (const char* comma : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8"})
        if (std::setlocale(LC_ALL, comma)) break;
    PlistArray values{{least}, {most}, {PlistDate{-63'114'076'800}}, {PlistDate{252'423'993'599}}};
    for (const double number : {0.1, 0.001, 1e-300, 5e-324, -0.0, 1e22, std::numeric_limits<double>::max(),
                                std::numeric_limits<double>::infinity()})
        values.push_back({number});
    for (const std::string_view text : {"", " ", "\r", "\r\n", "\n \t", "]]>", "&amp;", "<!-- -->",
                                        "\xF0\x9F\x98\x80", "a\xCC\x81", "\xC2\x85", "\uFEFFa"})
        values.push_back({std::string(text)});
    std::string bytes;
    for (; bytes.size() < 130; bytes += static_cast<char>(bytes.size() * 41))
        values.push_back({PlistData{bytes}});
    const PlistValue value{dictionaryOf({{"all", {values}}, {" \r&", {nestedArrays(20)}}})};

    const PlistValue back = readPropertyList(writeXmlPropertyList(value));
    std::setlocale(LC_ALL, localeBefore.c_str());

    EXPECT_EQ(back, value);
    const PlistArray& read = *back.as<PlistDictionary>()->find("all")->as<PlistArray>();
    EXPECT_TRUE(std::signbit(*read[8].as<double>()));  // -0.0 equals 0.0
    EXPECT_TRUE(std::isnan(*readPropertyList(writeXmlPropertyList({std::nan("")})).as<double>()));
}

TEST(XmlPropertyListTest, WhatXmlCannotHoldIsNotWritten) {
    using namespace std::string_view_literals;
    std::vector<PlistValue> values{{PlistUid{1}}, {PlistBigInteger{"9223372036854775808"}}};
    for (const std::string_view text : {"a\0b"sv, "\x1F"sv, "\xFF"sv, "\xED\xA0\x80"sv})
        values.push_back({std::string(text)});
    for (const double moment : {0.5, std::nan(""), 252'423'993'600.0, -63'114'076'801.0})
        values.push_back({PlistDate{moment}});
    values.push_back({dictionaryOf({{"\x01", {true}}})});
    values.push_back({dictionaryOf({{"a", {true}}, {"a", {true}}})});
    for (const PlistValue& value : values)
        EXPECT_TRUE(thrownBy<PlistError>([&] { writeXmlPropertyList(value); })) << &value - values.data();
}

TEST(PlistDictionaryTest, KeysAreFoundReplacedInPlaceAndRemoved) {
    PlistDictionary dictionary = dictionaryOf({{"a", {true}}, {"b", {false}}});
    dictionary.set("a", {std::int64_t{1}});
    dictionary.set("c", {0.5});
    EXPECT_EQ(dictionary.entries.front().key, "a");
    EXPECT_EQ(*dictionary.find("a"), PlistValue{std::int64_t{1}});
    EXPECT_TRUE(dictionary.remove("b"));
    EXPECT_FALSE(dictionary.remove("b"));
    EXPECT_EQ(dictionary.find("b"), nullptr);
    EXPECT_EQ(dictionary, dictionaryOf({{"c", {0.5}}, {"a", {std::int64_t{1}}}}));
    EXPECT_FALSE(dictionary == dictionaryOf({{"c", {0.5}}, {"a", {true}}}));
    EXPECT_FALSE(dictionary == dictionaryOf({{"c", {0.5}}}));
}

}  // namespace brell
