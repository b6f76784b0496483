// The name of a preference.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace brell {

inline constexpr std::string_view globalDomain = "NSGlobalDomain";

using DomainSet = std::set<std::string, std::less<>>;

// A key of a preference domain. Both are compared exactly, letter case included.
struct PrefKey {
    std::string domain;  // "com.apple.dock", or globalDomain
    std::string name;    // "autohide"

    std::string rendered() const { return domain + " " + name; }
    bool operator==(const PrefKey&) const = default;
    auto operator<=>(const PrefKey&) const = default;
};

}  // namespace brell
