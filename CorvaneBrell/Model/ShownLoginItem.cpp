#include "CorvaneBrell/Model/ShownLoginItem.h"

namespace brell {

bool ShownLoginItem::isInForce() const {
    return change && change->status == EntryStatus::applied && !drift &&
           row.isOn == change->agent->turnedOn();
}

JobFacts factsOf(const AppState& state, const LoginItemRow& row) {
    const auto known = row.record ? state.jobFacts.find(row.record->id()) : state.jobFacts.end();
    return known == state.jobFacts.end() ? JobFacts() : known->second;
}

ShownLoginItems::ShownLoginItems(const AppState& state) : state_(state) {
    for (const JournalEntry& entry : state.entries)
        if (entry.agent && entry.isActive()) active_.emplace(entry.tweakID, &entry);
    for (const JournalEntry& entry : state.interrupted) interrupted_.insert(entry.id);
    for (const DriftedEntry& drift : state.driftedAgents) drifted_.emplace(drift.entry.id, &drift);
}

ShownLoginItem ShownLoginItems::of(const LoginItemRow& row) const {
    ShownLoginItem item{row,          std::nullopt,     std::nullopt,         false,
                        std::nullopt, isLocked(state_), factsOf(state_, row), state_.seenItems.isNew(row)};
    // An item that is not the user's own may have the same label.
    if (!row.record || row.record->scope != AgentScope::user) return item;
    if (!row.record->label() && !row.record->plist.leadsTo) return item;
    if (const auto refusal = state_.switchRefusals.find(row.record->id());
        refusal != state_.switchRefusals.end())
        item.refusal = refusal->second;
    addChange(item);
    return item;
}

void ShownLoginItems::addChange(ShownLoginItem& item) const {
    const auto change = active_.find(agentTweakID(item.row.record->label().value_or("")));
    if (change == active_.end()) return;
    item.change = *change->second;
    const auto found = drifted_.find(item.change->id);
    const DriftedEntry* drift = found == drifted_.end() ? nullptr : found->second;
    if (drift && !drift->lines.empty()) item.drift = drift->lines.front();
    item.isInterrupted = interrupted_.contains(item.change->id);
    if (drift && drift->refusal)
        item.refusal = (item.isInterrupted ? "It was interrupted, and Brell can't put it back. "
                                           : "Brell can't put it back. ") +
                       *drift->refusal;
    else if (item.isInterrupted)
        item.refusal = "It was interrupted. Put it back first; then it can be switched again.";
    else if (item.change->status == EntryStatus::applied && !item.isInForce())
        item.refusal =
            "It was changed outside Brell since. Put it back first; then it can be switched again.";
}

}  // namespace brell
