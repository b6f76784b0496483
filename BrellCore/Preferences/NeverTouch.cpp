#include "BrellCore/Preferences/NeverTouch.h"

#include <algorithm>
#include <string>

namespace brell::NeverTouch {

namespace {

bool startsWithAny(std::string_view text, const auto& prefixes) {
    return std::any_of(prefixes.begin(), prefixes.end(),
                       [&](std::string_view prefix) { return text.starts_with(prefix); });
}

}  // namespace

bool isForbiddenDomain(std::string_view domain) {
    return startsWithAny(domain, domainPrefixes) || domain.find("/Containers/") != std::string_view::npos ||
           domain.find("/Library/Preferences/") != std::string_view::npos;
}

bool isForbiddenLabel(std::string_view label) {
    return startsWithAny(label, labelPrefixes) || isOwnLabel(label);
}

bool isOwnLabel(std::string_view label) {
    return label == ownLabel || label.starts_with(std::string(ownLabel) + ".");
}

}  // namespace brell::NeverTouch
