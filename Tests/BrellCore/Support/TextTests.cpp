#include "BrellCore/Support/Text.h"

#include <gtest/gtest.h>

#include <cmath>

#include "BrellCore/Support/JsonWriter.h"
#include "Tests/Support/Testing.h"

namespace brell {

namespace {

using testing::messageOf;

// Every way in which bytes fail to be UTF-8; the last few look like code points that do not exist.
const std::vector<std::string> invalid{
    "\x80",         "\xC3",         "\xC3(", "\xC0\xAF",     "\xE2\x82",         "\xF0\x9F\x98",
    "\xED\xA0\x80", "\xED\xBF\xBF", "\xFF",  "\xE0\x80\x80", "\xF0\x80\x80\x80", "\xF4\x90\x80\x80"};
const std::string valid =
    std::string("\0 a\x7F", 4) + "\u0080\u07FF\u0800\uD7FF\uE000\uFFFE\uFFFF\U00010000\U0010FFFF";

}  // namespace

TEST(TextTest, InvalidUtf8IsFoundAndRepairedAndTheRestKept) {
    EXPECT_TRUE(isUtf8(""));
    EXPECT_TRUE(isUtf8(valid));
    EXPECT_EQ(repairedUtf8(valid), valid);
    for (const std::string& bytes : invalid) {
        EXPECT_FALSE(isUtf8("a" + bytes + "b")) << bytes.size();
        const std::string repaired = repairedUtf8("\u00E9" + bytes + "\u00E9");
        EXPECT_TRUE(isUtf8(repaired));
        EXPECT_TRUE(repaired.starts_with("\u00E9\uFFFD"));
        EXPECT_TRUE(repaired.ends_with("\u00E9"));
    }
}

TEST(TextTest, OneLineHoldsNothingThatLeavesTheLine) {
    const struct {
        std::string text, line;
    } rows[] = {{" two  words ", " two  words "},
                {"a\nb\r\nc\td\ve\ff", "a b  c d e f"},
                {std::string("nul\0l", 5), "nul l"},
                {"\x1B[31mred\x7F", " [31mred "},
                {"next\u0085line\u2028sep\u2029par\u009F", "next line sep par "},
                {"\u00A0\u00E9\U0001F600", "\u00A0\u00E9\U0001F600"},
                {"txt.\u202Eexe\u202C \u2066x\u2069", "txt. exe   x "},
                {"a\u061Cb\u200Bc\u200Ed\u200Fe\uFEFFf\u2060g\u200D", "a b c d e f g\u200D"},
                {"\xC2\nbroken\xFF", "\uFFFD broken\uFFFD"}};
    for (const auto& row : rows) EXPECT_EQ(oneLine(row.text), row.line);
    EXPECT_EQ(excerpt("a\nb\u00E9", 5), "a b\u00E9");
    EXPECT_EQ(excerpt("a\nb\u00E9\u20AC", 7), "a b\u00E9...") << "no part of a character";
    EXPECT_EQ(excerpt("\x80\x80\x80\x80\x80\x80", 5).substr(0, 3), "\uFFFD");
}

TEST(TextTest, SlugsKeepLettersOfEveryScriptWhole) {
    for (const testing::Texts& row : testing::sampleRows("Preset/slugs.txt"))
        EXPECT_EQ(lowerCaseSlug(row[0]), row[1]);
    EXPECT_EQ(lowerCaseSlug(" -- !"), "");
    EXPECT_EQ(lowerCaseSlug("x\xFFz"), "x-z");
}

TEST(TextTest, SmallHelpers) {
    EXPECT_EQ(join({}, ", "), "");
    EXPECT_EQ(join({"", "b", ""}, ", "), ", b, ");
    EXPECT_EQ(firstNames({}), "");
    EXPECT_EQ(firstNames({"a", std::string(300, 'x')}), "a, " + std::string(200, 'x') + "...");
    EXPECT_EQ(firstNames(std::vector<std::string>(8, "b")), "b, b, b, b, b, b, b, b");
    EXPECT_EQ(firstNames(std::vector<std::string>(1000, "b\n")),
              "b , b , b , b , b , b , b , b  and 992 more");
    EXPECT_EQ(firstOf(std::vector<std::string>(8, "B."), " "), "B. B. B. B. B. B. B. B.");
    EXPECT_EQ(firstOf(std::vector<std::string>(10, "B."), "\n"),
              "B.\nB.\nB.\nB.\nB.\nB.\nB.\nB.\nAnd 2 more.");
    EXPECT_EQ(stripped(" \t\r\n\v\f"), "");
    EXPECT_EQ(stripped("\n a b\t"), "a b");
    EXPECT_EQ(fileUrl("/Users/jo ann/A-z_0.9~"), "file:///Users/jo%20ann/A-z_0.9~");
    EXPECT_EQ(fileUrl("/\u00E9%?#&+:'\"\n"), "file:///%C3%A9%25%3F%23&+:'%22%0A");
}

TEST(JsonWriterTest, LaysOutAndEscapes) {
    const auto written = [](JsonWriter json) {
        json.beginObject();
        json.key("\"a\"");
        json.beginArray();
        json.endArray();
        json.key("b");
        json.beginArray();
        json.integer(INT64_MIN);
        json.real(1e9);
        json.boolean(false);
        json.beginObject();
        json.endObject();
        json.raw("null");
        json.endArray();
        json.key("c");
        json.string(std::string("\"\\/\b\f\n\r\t\0\x1F\x7F\u2028\uFEFF\u00E9", 19));
        json.endObject();
        return json.take();
    };
    const std::string text = "\"\\\"\\\\/\\u0008\\u000c\\n\\r\\t\\u0000\\u001f\\u007f\\u2028\\ufeff\u00E9\"";

    EXPECT_EQ(written(JsonWriter(JsonWriter::Layout::compact)),
              R"({"\"a\"":[],"b":[-9223372036854775808,1000000000.0,false,{},null],"c":)" + text + "}");
    EXPECT_EQ(written(JsonWriter(JsonWriter::Layout::pretty, 1)),
              "{\n    \"\\\"a\\\"\" : [],\n    \"b\" : [\n      -9223372036854775808,\n      1000000000.0,\n"
              "      false,\n      {},\n      null\n    ],\n    \"c\" : " +
                  text + "\n  }");
}

}  // namespace brell
