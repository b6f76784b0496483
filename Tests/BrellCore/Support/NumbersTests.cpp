// Numbers, times and identifiers as text.
#include "BrellCore/Support/Numbers.h"

#include <gtest/gtest.h>

#include <cmath>

#include "BrellCore/Support/TimeStamp.h"
#include "BrellCore/Support/Uuid.h"
#include "Tests/Support/Testing.h"

namespace brell {

namespace {

using testing::sampleRows;
using testing::Texts;

}  // namespace

// Each row is a text, the integer that it is and the real, in its shortest form.
TEST(NumbersTest, OnlyWholeTextsThatFitAreNumbers) {
    for (const Texts& row : sampleRows("Numbers/numbers.txt")) {
        const auto integer = parseInteger(row[0]);
        const auto real = parseReal(row[0]);
        EXPECT_EQ(integer ? std::to_string(*integer) : "none", row[1]) << row[0];
        EXPECT_EQ(real ? shortestDecimal(*real) : "none", row[2]) << row[0];
    }
    for (const std::string_view text : {std::string_view(), {"1\0", 2}, {"1\n"}, {"\n1"}}) {
        EXPECT_FALSE(parseInteger(text));
        EXPECT_FALSE(parseReal(text));
    }
    EXPECT_EQ(shortestDecimal(-NAN), "nan");
}

TEST(TimeStampTest, ReadsAndWritesOneFormOnly) {
    for (const Texts& row : sampleRows("Numbers/dates.txt")) {
        const TimeStamp time{std::chrono::seconds(std::stoll(row[0]))};
        EXPECT_EQ(iso8601(time), row[1]);
        EXPECT_EQ(parseIso8601(row[1]), time);
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
