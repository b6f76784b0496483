#include "BrellCore/Review/PrivacyChecklist.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>

namespace brell {
namespace {

struct FakeNumbers final : KeyedNumbers {
    std::optional<double> number(const std::string& key) const override {
        const auto found = stored.find(key);
        return found == stored.end() ? std::nullopt : std::optional(found->second);
    }
    void setNumber(const std::string& key, double value) override { stored[key] = value; }
    std::map<std::string, double> stored;
};

constexpr TimeStamp at(std::int64_t seconds) {
    return TimeStamp(std::chrono::seconds(seconds));
}

TEST(PrivacyChecklist, EachCardHasALinkOfItsOwn) {
    std::set<std::string> links;
    for (const PrivacyCard& card : PrivacyChecklist::cards())
        EXPECT_TRUE(links.insert(card.deepLink).second) << card.id;
    EXPECT_EQ(PrivacyChecklist::cards()[1].deepLink,
              "x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension?Privacy_AllFiles");
}

TEST(ReviewedDates, KeepsTheLastDateOfEachCard) {
    FakeNumbers numbers;
    ReviewedDates dates{numbers};
    EXPECT_EQ(dates.date("camera"), std::nullopt);
    dates.markReviewed("camera", at(1'700'000'000));
    dates.markReviewed("camera", at(1'800'000'000));
    EXPECT_EQ(dates.date("camera"), at(1'800'000'000));
    EXPECT_EQ(dates.date("microphone"), std::nullopt);
    EXPECT_EQ(numbers.stored, (std::map<std::string, double>{{"privacy.reviewed.camera", 1.8e9}}));
}

TEST(ReviewedDates, TakesNoNumberThatIsNoDate) {
    FakeNumbers numbers;
    const ReviewedDates dates{numbers};
    for (const double odd : {std::nan(""), HUGE_VAL, -HUGE_VAL, 1e300, 3e11}) {
        numbers.setNumber("privacy.reviewed.camera", odd);
        EXPECT_EQ(dates.date("camera"), std::nullopt) << odd;
    }
    numbers.setNumber("privacy.reviewed.camera", -0.5);
    EXPECT_EQ(dates.date("camera"), at(-1));
}

}  // namespace
}  // namespace brell
