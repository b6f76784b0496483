// The privacy permissions that are worth a look by hand. The permissions themselves are neither read nor
// changed; only the day on which a card was last reviewed is remembered.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "BrellCore/Support/TimeStamp.h"

namespace brell {

struct PrivacyCard {
    std::string_view id;  // stable; the reviewed date is kept under it
    std::string_view title;
    std::string_view meaning;  // what the permission lets an app do
    std::string_view whoNeedsIt;
    std::string_view whatToLookFor;
    std::string deepLink;  // opens the pane of System Settings
    bool paneConfirmed;    // the link was seen to work on the current macOS
    bool operator==(const PrivacyCard&) const = default;
};

namespace PrivacyChecklist {

const std::vector<PrivacyCard>& cards();  // in display order

}  // namespace PrivacyChecklist

// Numbers that the application keeps for itself: in its user defaults, or in a file.
class KeyedNumbers {
public:
    virtual ~KeyedNumbers();

    // Nothing when the key is missing or holds anything but a number; a boolean is not one.
    virtual std::optional<double> number(const std::string& key) const = 0;
    virtual void setNumber(const std::string& key, double value) = 0;
};

// When each card was last reviewed, as seconds since 1970.
struct ReviewedDates {
    KeyedNumbers& defaults;

    void markReviewed(std::string_view id, TimeStamp date);
    std::optional<TimeStamp> date(std::string_view id) const;  // nothing for a card that never was
};

}  // namespace brell
