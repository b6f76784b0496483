// A background item in plain words: whose it is, what it does and what stops without it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "BrellCore/Catalog/Tweak.h"

namespace brell {

struct AgentExplanation {
    std::string app;
    std::string what;
    std::string stops;
    Risk risk;
    bool isUpdater;  // or security software: turning it off costs security either way
    bool operator==(const AgentExplanation&) const = default;
};

namespace AgentExplainer {

// A known kind of item. A prefix that ends in a dot stands for everything of a vendor.
struct Rule {
    std::vector<std::string_view> labelPrefixes;
    std::vector<std::string_view> teamIDs;
    AgentExplanation explanation;
};

// The rule of an application's updater.
Rule updater(std::vector<std::string_view> labelPrefixes, std::vector<std::string_view> teamIDs,
             std::string app);

// In the order in which they are tried.
const std::vector<Rule>& rules();

// By the first rule that knows the label or the team; else by the program that is run.
AgentExplanation explain(std::string_view label, const std::optional<std::string>& teamID,
                         const std::optional<std::string>& executable);

}  // namespace AgentExplainer

}  // namespace brell
