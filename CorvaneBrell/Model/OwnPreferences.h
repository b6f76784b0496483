// What the application remembers for itself, in a preference domain of its own.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "BrellCore/Preferences/NeverTouch.h"
#include "BrellCore/Preferences/PrefKey.h"
#include "BrellCore/Review/PrivacyChecklist.h"

namespace brell {

class PreferenceStore;

// A reading never raises: what can't be read counts as not there. A change raises StoreError.
class OwnPreferences final : public KeyedNumbers {
public:
    static constexpr std::string_view domain = NeverTouch::ownLabel;
    static const DomainSet& domains();  // just that one, for the store

    // The store must allow the domain and outlive this.
    explicit OwnPreferences(PreferenceStore& store) : store_(store) {}

    std::optional<double> number(const std::string& key) const override;
    void setNumber(const std::string& key, double value) override;

private:
    PreferenceStore& store_;
};

}  // namespace brell
