// The XML form of property lists, and what both forms share.
#include "BrellCore/Support/PropertyList.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>

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

// A comma as decimal sign for as long as it lives, where a locale that has one is installed.
class CommaLocale {
public:
    CommaLocale() : before_(std::setlocale(LC_ALL, nullptr)) {
        for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8"})
            if (std::setlocale(LC_ALL, name)) return;
    }
    ~CommaLocale() { std::setlocale(LC_ALL, before_.c_str()); }

private:
    std::string before_;
};

struct Sample {
    std::string_view written;
    PlistValue meant;
};

struct Refusal {
    std::string_view document;
    std::string_view reason;  // a part of it
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
        {"<string>&lt;&gt;&amp;&apos;&quot;&#65;&#x42;&#x1F600;&#13;&#0010;</string>",
         {"<>&'\"AB\xF0\x9F\x98\x80\r\n"s}},
        {"<string>&amp;lt;</string>", {"&lt;"s}},
        {"<string>a\r\nb\rc</string>", {"a\r\nb\rc"s}},
        {"<string>a<!-- <b> & -->b<?c d?>e<![CDATA[<&amp;\r\n]]>f</string>", {"abe<&amp;\r\nf"s}},
        {"<integer>-9223372036854775808</integer>", {least}},
        {"<integer>9223372036854775807</integer>", {most}},
        {"<integer> + 007</integer>", {std::int64_t{7}}},
        {"<integer>-0x1f</integer>", {std::int64_t{-31}}},
        {"<integer>0X7FFFFFFFFFFFFFFF</integer>", {most}},
        {"<integer>9223372036854775808</integer>", {PlistBigInteger{"9223372036854775808"}}},
        {"<integer>-9223372036854775809</integer>", {PlistBigInteger{"-9223372036854775809"}}},
        {"<integer>0x10000000000000000</integer>", {PlistBigInteger{"0x10000000000000000"}}},
        {"<real>0.001</real>", {0.001}},
        {"<real> -1E-3</real>", {-0.001}},
        {"<real>+Infinity</real>", {std::numeric_limits<double>::infinity()}},
        {"<real>-inf</real>", {-std::numeric_limits<double>::infinity()}},
        {"<date>2001-01-01T00:00:00Z</date>", {PlistDate{0}}},
        {"<date>2000-12-31T23:59:59Z</date>", {PlistDate{-1}}},
        {"<data/>", {PlistData{}}},
        {"<data>\n\tAP8\n\tQ/w==\n</data>", {PlistData{"\0\xFF\x10\xFF"s}}},
        {"<array> <!-- a --> <integer>1</integer>\n<array/></array>",
         {PlistArray{{std::int64_t{1}}, {PlistArray{}}}}},
        {"<dict><key>b</key><true/><key></key><string>x</string></dict>",
         {dictionaryOf({{"", {"x"s}}, {"b", {true}}})}},
    };
    for (const Sample& sample : samples) EXPECT_EQ(readValue(sample.written), sample.meant) << sample.written;
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

TEST(XmlPropertyListTest, WhatIsNoPropertyListIsRefusedWithItsReason) {
    using namespace std::string_view_literals;
    const Refusal refusals[] = {
        {"", "it is empty"},
        {"{ a = 1; }", "neither an XML nor a binary"},
        {"\xFF\xFE<\0p\0"sv, "UTF-16"},
        {"\0<\0p"sv, "UTF-16"},
        {"<?xml version='1.0' encoding='ISO-8859-1'?><plist><true/></plist>", "declared as iso-8859-1"},
        {"<!-- a --><?xml version='1.0'?><plist><true/></plist>", "at byte 12 is not the first"},
        {"<plist><true/></plist><!DOCTYPE plist>", "document type stands behind"},
        {"<dict/>", "<dict> at byte 1 is not its one plist element"},
        {"<plist><true/></plist><plist/>", "at byte 23 is not its one plist element"},
        {"<!-- a -->", "no plist element"},
        {"<plist><true/></plist>x", "\"x\" at byte 22 stands between"},
        {"<plist/>", "its plist element is empty"},
        {"<plist><true/><false/></plist>", "second value stands in the plist element at byte 15"},
        {"<plist>yes<true/></plist>", "\"yes\" at byte 7"},
        {"<plist><![CDATA[ ]]><true/></plist>", "stands between the elements"},
        {"<plist><plist><true/></plist></plist>", "<plist> at byte 8 is no value"},
        {"<plist><True/></plist>", "<True> at byte 8 is no value"},
        {"<plist><true>1</true></plist>", "<true> at byte 8 is not empty"},
        {"<plist><string>a<b/></string></plist>", "holds more than text"},
        {"<plist><string>a</strong></plist>", "not well-formed at byte"},
        {"<plist><string>\xC3(</string></plist>", "at byte 15 that is no character"},
        {"<plist><string>a\0b</string></plist>"sv, "at byte 16 that is no character"},
        {"<plist><string>\xEF\xBF\xBE</string></plist>", "at byte 15 that is no character"},
        {"<!DOCTYPE plist [<!ENTITY a 'b'>]><plist><string>&a;</string></plist>", "&a stands for no"},
        {"<plist><string>&#xD800;</string></plist>", "&#xD800 stands for no character"},
        {"<plist><string>&#x110000;</string></plist>", "stands for no character"},
        {"<plist><string>&#x;</string></plist>", "stands for no character"},
        {"<plist><string>&#99999999999;</string></plist>", "stands for no character"},
        {"<plist><string>&amp</string></plist>", "&amp stands for no character"},
        {"<plist><string>Q & A;</string></plist>", "& stands for no character"},
        {"<plist><dict><key>a</key></dict></plist>", "the key \"a\" at byte 14 has no value"},
        {"<plist><dict><key>a</key><key>b</key><true/></dict></plist>",
         "the key \"a\" at byte 14 has no value"},
        {"<plist><dict><true/></dict></plist>", "the value <true> at byte 14 has no key"},
        {"<plist><dict><key>a</key>b<true/></dict></plist>", "\"b\" at byte 25"},
        {"<plist><dict><key>a</key><true/><key>&#97;</key><true/></dict></plist>", "\"a\" stands twice"},
        {"<plist><array>&#32;</array></plist>", "stands between the elements"},
    };
    for (const Refusal& refusal : refusals) {
        const std::string message = messageOf([&] { readPropertyList(refusal.document); });
        EXPECT_NE(message.find(refusal.reason), std::string::npos) << refusal.document << "\n" << message;
    }
}

TEST(XmlPropertyListTest, MalformedNumbersDatesAndDataAreRefused) {
    const std::pair<std::string, std::vector<std::string>> malformed[] = {
        {"integer", {"", "-", "1 ", "1.0", "--1", "0x", "0x-1", "1f", "99999999999999999999x"}},
        {"real", {"", "1,5", "1.5 ", "0x1p3", "1e", "1e999", "nan(1)", "--1"}},
        {"date", {"", "2001-01-01", "2001-02-29T00:00:00Z", "2001-01-01T00:00:00+01:00"}},
        {"data", {"YW=", "YWI", "Y===", "YWI=YWI=", "YW=I", "YW-_"}}};
    for (const auto& [name, contents] : malformed)
        for (const std::string& content : contents) {
            const std::string element = "<" + name + ">" + content + "</" + name + ">";
            EXPECT_TRUE(thrownBy<PlistError>([&] { readValue(element); })) << element;
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
    for (const std::size_t levels : {129u, 300'000u}) {
        const std::string deep = inPlist(repeated("<array>", levels) + repeated("</array>", levels));
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

TEST(XmlPropertyListTest, AFileCutAtAnyByteIsRefused) {
    const std::string whole = writeXmlPropertyList(
        {dictionaryOf({{"a & b", {PlistArray{{std::int64_t{1}}, {0.5}}}}, {"c", {PlistData{"abc"}}}})});
    for (std::size_t size = 0; size + 1 < whole.size(); ++size)  // the last byte is a line feed
        EXPECT_TRUE(thrownBy<PlistError>([&] { readPropertyList(whole.substr(0, size)); })) << size;
}

TEST(XmlPropertyListTest, TheWrittenFormIsTheSystemsOwn) {
    const PlistValue value{
        dictionaryOf({{"b", {PlistArray{{true}, {std::int64_t{-1}}, {0.1}, {PlistArray{}}}}},
                      {"a&<>", {std::string("\"x\"\r\n")}},
                      {"B", {PlistData{std::string(60, '\0')}}},
                      {"d", {PlistDate{86'399}}},
                      {"e", {PlistDictionary{}}}})};
    const std::string expected =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
        "<plist version=\"1.0\">\n<dict>\n\t<key>B</key>\n\t<data>\n\t" +
        std::string(68, 'A') + "\n\t" + std::string(12, 'A') +
        "\n\t</data>\n\t<key>a&amp;&lt;&gt;</key>\n\t<string>\"x\"&#13;\n</string>\n"
        "\t<key>b</key>\n\t<array>\n\t\t<true/>\n\t\t<integer>-1</integer>\n\t\t<real>0.1</real>\n\t\t<array/"
        ">\n"
        "\t</array>\n\t<key>d</key>\n\t<date>2001-01-01T23:59:59Z</date>\n\t<key>e</key>\n\t<dict/>\n"
        "</dict>\n</plist>\n";
    EXPECT_EQ(writeXmlPropertyList(value), expected);
}

TEST(XmlPropertyListTest, WrittenValuesReadBackExactlyUnderAnyLocale) {
    const CommaLocale comma;
    PlistArray values{{least}, {most}, {PlistDate{-63'114'076'800}}, {PlistDate{252'423'993'599}}};
    for (const double number : {0.1, 0.001, 1e-300, 5e-324, -0.0, 1e22, std::numeric_limits<double>::max(),
                                std::numeric_limits<double>::infinity()})
        values.push_back({number});
    for (const std::string_view text : {"", " ", "\r", "\r\n", "\n \t", "]]>", "&amp;", "<!-- -->",
                                        "\xF0\x9F\x98\x80", "a\xCC\x81", "\xC2\x85", "\uFEFFa"})
        values.push_back({std::string(text)});
    for (std::size_t size = 0; size < 130; ++size) values.push_back({PlistData{std::string(size, '\xA5')}});
    const PlistValue value{dictionaryOf({{"all", {values}}, {" \r&", {nestedArrays(20)}}})};

    const PlistValue back = readPropertyList(writeXmlPropertyList(value));

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
