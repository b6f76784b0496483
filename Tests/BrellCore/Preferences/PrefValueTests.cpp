#include "BrellCore/Preferences/PrefValue.h"

#include <gtest/gtest.h>

#include <cmath>

#include "BrellCore/Preferences/NeverTouch.h"
#include "BrellCore/Preferences/PrefValueJson.h"
#include "Tests/Support/Testing.h"

namespace brell {

namespace {

using namespace testing;
using Strings = PrefValue::StringArray;

StoredValue storedValue(const std::string& text) {
    simdjson::ondemand::parser parser;
    const simdjson::padded_string padded(text);
    auto document = parser.iterate(padded);
    return readStoredValue(document.get_object());
}

std::string encoded(const StoredValue& stored) {
    JsonWriter json(JsonWriter::Layout::compact);
    writeJson(json, stored);
    return json.take();
}

}  // namespace

TEST(PrefValueTest, EachKindHasItsWordsAndForms) {
    const struct {
        PrefValue value;
        const char *type, *flag, *rendered, *json;
    } rows[] = {
        {true, "bool", "-bool", "true", R"({"type":"bool","value":true})"},
        {false, "bool", "-bool", "false", R"({"type":"bool","value":false})"},
        {36, "int", "-int", "36", R"({"type":"int","value":36})"},
        {INT64_MIN, "int", "-int", "-9223372036854775808", R"({"type":"int","value":-9223372036854775808})"},
        {1.0, "double", "-float", "1.0", R"({"type":"double","value":1.0})"},
        {-3.0, "double", "-float", "-3.0", R"({"type":"double","value":-3.0})"},
        {0.15, "double", "-float", "0.15", R"({"type":"double","value":0.15})"},
        {999999999.0, "double", "-float", "999999999.0", R"({"type":"double","value":999999999.0})"},
        {1e9, "double", "-float", "1000000000.0", R"({"type":"double","value":1000000000.0})"},
        {1e300, "double", "-float", "1e+300", R"({"type":"double","value":1e+300})"},
        {"a\"b", "string", "-string", "\"a\"b\"", R"({"type":"string","value":"a\"b"})"},
        {"", "string", "-string", "\"\"", R"({"type":"string","value":""})"},
        {Strings{}, "stringArray", "-array", "[]", R"({"type":"stringArray","value":[]})"},
        {Strings{"a", "", "\n"}, "stringArray", "-array", "[\"a\", \"\", \"\n\"]",
         R"({"type":"stringArray","value":["a","","\n"]})"}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.value.typeName(), row.type);
        EXPECT_EQ(row.value.defaultsFlag(), row.flag);
        EXPECT_EQ(StoredValue(row.value).rendered(), row.rendered);
        EXPECT_EQ(encoded(row.value), row.json);
        EXPECT_EQ(storedValue(row.json), StoredValue(row.value));
        EXPECT_EQ(PrefValue::fromPropertyList(row.value.propertyListObject()), row.value);
    }
    for (const auto& a : rows)
        for (const auto& b : rows) EXPECT_EQ(a.value == b.value, &a == &b) << a.json << b.json;
    EXPECT_EQ(PrefValue(0.0), PrefValue(-0.0));
    EXPECT_EQ(encoded(PrefValue(-0.0)), R"({"type":"double","value":-0.0})");
    EXPECT_NE(PrefValue(1), PrefValue(1.0));
    EXPECT_NE(PrefValue(1), PrefValue(true));
    EXPECT_NE(StoredValue::absent(), StoredValue(false));
    EXPECT_EQ(StoredValue::absent().rendered(), "absent");
}

TEST(PrefValueTest, OtherPropertyListsAreRefusedByName) {
    const struct {
        PlistValue object;
        const char* word;
    } rows[] = {{{PlistDictionary()}, "dictionary"},
                {{PlistData{"x"}}, "data"},
                {{PlistDate{0}}, "date"},
                {{PlistUid{1}}, "unique identifier"},
                {{PlistBigInteger{"18446744073709551615"}}, "number (out of range)"},
                {{PlistArray{{std::string("a")}, {std::int64_t{1}}}}, "array (not all strings)"},
                {{PlistArray{{PlistArray()}}}, "array (not all strings)"},
                {{PlistArray{{std::string("a")}, {std::string("\x01")}}},
                 "array (with characters a property list can't hold)"},
                {{std::string("\x01")}, "string (with characters a property list can't hold)"}};
    for (const auto& row : rows) {
        EXPECT_FALSE(PrefValue::fromPropertyList(row.object)) << row.word;
        EXPECT_EQ(propertyListTypeName(row.object), row.word);
    }
}

TEST(PrefValueTest, JsonKeysMayComeInAnyOrderAndAbsenceWins) {
    for (const Texts& row : sampleRows("Journal/values.txt"))
        EXPECT_EQ(storedValue(row[0]).rendered(), row[1]) << row[0];
}

TEST(PrefValueTest, JsonIsNeverGuessedAt) {
    for (const Texts& row : sampleRows("Journal/refused-values.txt"))
        EXPECT_NE(messageOf([&] { storedValue(row[0]); }), "") << row[0];
    for (const char* text :
         {R"({"type": "float", "value": 1})", R"({"value": 1, "type": "float"})", R"({"type": "float"})"})
        EXPECT_EQ(messageOf([&] { storedValue(text); }), "unknown PrefValue type float");
    // A long word without its value is looked at once: the parser has no room for its text twice.
    EXPECT_NE(messageOf([] { storedValue(R"({"type": ")" + std::string(1'000'000, 'x') + "\"}"); }), "");

    for (const PrefValue& value :
         {PrefValue(NAN), PrefValue(INFINITY), PrefValue("\xFF"), PrefValue(Strings{"\xC3"})})
        EXPECT_TRUE(thrownBy<JsonWriteError>([&] { encoded(value); }));
}

TEST(NeverTouchTest, ProtectsByPlainComparisonsOfTheWholeText) {
    for (const Texts& row : sampleRows("NeverTouch/domains.txt"))
        EXPECT_EQ(NeverTouch::isForbiddenDomain(row[0]), row[1] == "protected") << row[0];
    for (const Texts& row : sampleRows("NeverTouch/labels.txt")) {
        EXPECT_EQ(NeverTouch::isForbiddenLabel(row[0]), row[1] != "free") << row[0];
        EXPECT_EQ(NeverTouch::isOwnLabel(row[0]), row[1] == "own") << row[0];
    }
}

}  // namespace brell
