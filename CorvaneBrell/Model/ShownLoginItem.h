// A login item with everything that its row says: how it fares, Brell's change of it, and why it can't be
// switched.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "CorvaneBrell/Model/AppState.h"

namespace brell {

struct ShownLoginItem {
    LoginItemRow row;
    std::optional<JournalEntry> change;  // ours, while it is active
    std::optional<std::string> drift;    // what was done to it since, outside Brell
    bool isInterrupted;                  // that change was never finished
    std::optional<std::string> refusal;  // why it can't be switched
    bool isLocked;                       // nothing can be changed at all
    JobFacts facts;
    bool isNew;  // since the last visit
    // launchd has the agent as the change left it.
    bool isInForce() const;
    bool operator==(const ShownLoginItem&) const = default;
};

JobFacts factsOf(const AppState& state, const LoginItemRow& row);

// For many items of one state, which must outlive this and stay as it is.
class ShownLoginItems {
public:
    explicit ShownLoginItems(const AppState& state);
    ShownLoginItem of(const LoginItemRow& row) const;

private:
    void addChange(ShownLoginItem& item) const;

    const AppState& state_;
    // Brell's changes of agents, by the journal's key, and what became of them since, by the entry.
    std::map<std::string_view, const JournalEntry*> active_;
    std::map<Uuid, const DriftedEntry*> drifted_;
    std::set<Uuid> interrupted_;
};

}  // namespace brell
