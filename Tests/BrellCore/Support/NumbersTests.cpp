// Numbers, times and identifiers as text.
#include "BrellCore/Support/Numbers.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <map>

#include "BrellCore/Support/TimeStamp.h"
#include "BrellCore/Support/Uuid.h"
#include "Tests/Support/Testing.h"

namespace brell {

namespace {

using testing::sampleRows;
using testing::Texts;

}  // namespace

TEST(NumbersTest, DecimalFormsAreTheShortest) {
    for (const char* text : {"-0.0", "0.15", "-3.0", "1000000000000.0", "0.0001", "9.999999999999999e-05",
                             "1e-05", "18014398509481982.0", "1.8014398509481984e+16", "1e+17",
                             "1.7976931348623157e+308", "5e-324", "-inf"})
        EXPECT_EQ(shortestDecimal(parseReal(text).value()), text);
    EXPECT_EQ(shortestDecimal(-NAN), "nan");
}

TEST(NumbersTest, OnlyWholeTextsThatFitAreNumbers) {
    const std::map<std::string, std::int64_t> integers{{"-0", 0},
                                                       {"+7", 7},
                                                       {"007", 7},
                                                       {"9223372036854775807", INT64_MAX},
                                                       {"-9223372036854775808", INT64_MIN}};
    for (const auto& [text, number] : integers) EXPECT_EQ(parseInteger(text), number) << text;
    for (const char* text : {"", "-", "+", "+-1", "++1", "--1", " 1", "1 ", "1.0", "1e3", "0x1F", "1,000",
                             "\u0661", "9223372036854775808", "-9223372036854775809"})
        EXPECT_FALSE(parseInteger(text)) << text;
    EXPECT_FALSE(parseInteger(std::string_view("1\0", 2)));

    const std::map<std::string, double> reals{{"1", 1},
                                              {".5", 0.5},
                                              {"5.", 5},
                                              {"+1e3", 1000},
                                              {"-1E-2", -0.01},
                                              {"inf", INFINITY},
                                              {"-Infinity", -INFINITY},
                                              {"1e-999", 0},
                                              {"5e-324", DBL_TRUE_MIN}};
    for (const auto& [text, number] : reals) EXPECT_EQ(parseReal(text), number) << text;
    for (const char* text : {"", ".", "e5", "1e", "1e999", "-1e999", "0x1p3", "-0X1", " 1", "1 ", "\n1",
                             "1,5", "1.5.2", "infx", "--1", "one"})
        EXPECT_FALSE(parseReal(text)) << text;
    EXPECT_FALSE(parseReal(std::string_view("1\0", 2)));
    EXPECT_TRUE(std::isnan(parseReal("nan").value_or(0)));
}

TEST(TimeStampTest, ReadsAndWritesOneFormOnly) {
    const struct {
        std::int64_t seconds;
        const char* text;
    } rows[] = {{0, "1970-01-01T00:00:00Z"},
                {-1, "1969-12-31T23:59:59Z"},
                {1794774193, "2026-11-15T20:23:13Z"},
                {1709164800, "2024-02-29T00:00:00Z"},
                {253402300799, "9999-12-31T23:59:59Z"},
                {-62167219200, "0000-01-01T00:00:00Z"}};
    for (const auto& row : rows) {
        const TimeStamp time{std::chrono::seconds(row.seconds)};
        EXPECT_EQ(iso8601(time), row.text);
        EXPECT_EQ(parseIso8601(row.text), time);
    }
    EXPECT_FALSE(parseIso8601(""));
    for (const Texts& row : sampleRows("Numbers/no-dates.txt")) EXPECT_FALSE(parseIso8601(row[0])) << row[0];
}

TEST(UuidTest, OnlyTheCanonicalFormIsOne) {
    const std::string upper = "01234567-89AB-CDEF-0123-456789ABCDEF";
    const auto id = Uuid::parse("01234567-89ab-CdEf-0123-456789abcdef");
    ASSERT_TRUE(id);
    EXPECT_EQ(id->text(), upper);
    EXPECT_EQ(Uuid::parse(upper), id);
    for (std::size_t at = 0; at < upper.size(); ++at) {
        for (const char wrong : {'G', '-', '/', ':', '@', '`', '\0', '0'}) {
            std::string text = upper;
            if (upper[at] == '-' ? wrong == '-' : wrong == '0') continue;
            text[at] = wrong;
            EXPECT_FALSE(Uuid::parse(text)) << text;
        }
        EXPECT_FALSE(Uuid::parse(upper.substr(0, at)));
    }
    EXPECT_FALSE(Uuid::parse(upper + "0"));
    EXPECT_FALSE(Uuid::parse("{" + upper.substr(2) + "}"));

    const Uuid first = Uuid::random(), second = Uuid::random();
    EXPECT_NE(first, second);
    EXPECT_EQ(Uuid::parse(first.text()), first);
}

}  // namespace brell
