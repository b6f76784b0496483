#include "CorvaneBrell/Model/ChangeOutcome.h"

#include <algorithm>
#include <set>
#include <string_view>

namespace brell {

bool hasAgent(const std::vector<JournalEntry>& entries) {
    return std::any_of(entries.begin(), entries.end(),
                       [](const JournalEntry& entry) { return entry.agent.has_value(); });
}

std::optional<SessionChange> actionOf(const ChangeOutcome& outcome, std::string name, LeadsTo leadsTo) {
    if (outcome.made.empty() && outcome.restored.empty()) return std::nullopt;
    SessionChange action{std::move(name), idsOf(outcome.made), {}, hasAgent(outcome.made)};
    if (leadsTo == LeadsTo::theOriginals) return action;
    action.restored = idsOf(outcome.restored);
    action.runsCommands |= hasAgent(outcome.restored);
    return action;
}

std::vector<JournalEntry> undoneBy(const ChangeOutcome& outcome) {
    std::set<std::string_view> changedAnew;
    for (const JournalEntry& entry : outcome.made) changedAnew.insert(entry.tweakID);
    std::vector<JournalEntry> undone;
    for (const JournalEntry& entry : outcome.restored)
        if (!changedAnew.contains(entry.tweakID)) undone.push_back(entry);
    return undone;
}

std::vector<Uuid> idsOf(const std::vector<JournalEntry>& entries) {
    std::vector<Uuid> ids;
    for (const JournalEntry& entry : entries) ids.push_back(entry.id);
    return ids;
}

}  // namespace brell
