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
    const std::vector<Texts> rows = sampleRows("Journal/kinds.txt");
    for (const Texts& row : rows) {
        const StoredValue stored = storedValue(row[0]);
        const PrefValue& value = stored.value.value();
        EXPECT_EQ(value.typeName(), row[1]);
        EXPECT_EQ(value.defaultsFlag(), row[2]);
        EXPECT_EQ(stored.rendered(), row[3]);
        EXPECT_EQ(encoded(stored), row[0]);
        EXPECT_EQ(PrefValue::fromPropertyList(value.propertyListObject()), value);
        for (const Texts& other : rows)
            EXPECT_EQ(stored == storedValue(other[0]), &row == &other) << row[0] << other[0];
    }
    EXPECT_EQ(storedValue(R"({"type":"int","value":36})"), StoredValue(36));
    EXPECT_EQ(storedValue(R"({"type":"stringArray","value":["a","","\n"]})"),
              StoredValue(Strings{"a", "", "\n"}));
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
