#include "BrellCore/Journal/RebuildPlan.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>
#include <unordered_map>

namespace brell {

namespace {

struct HashOfId {
    std::size_t operator()(const Uuid& id) const {
        std::size_t hash;
        std::memcpy(&hash, id.bytes.data(), sizeof hash);  // random as it is
        return hash;
    }
};

std::vector<JournalEntry> lastOfEach(std::vector<HistoryLine> lines) {
    std::vector<JournalEntry> entries;
    std::unordered_map<Uuid, std::size_t, HashOfId> places;
    for (HistoryLine& line : lines) {
        const auto [known, isNew] = places.try_emplace(line.entry.id, entries.size());
        if (isNew)
            entries.push_back(std::move(line.entry));
        else
            entries[known->second] = std::move(line.entry);
    }
    return entries;
}

// A tweak is changed only when it has no active change: when the later one was made this one had ended, and
// its keys were back.
void overtake(JournalEntry& entry, const JournalEntry& later) {
    entry.status = EntryStatus::restored;
    entry.restoredAt = later.appliedAt;
    entry.failure =
        "The history from which the journal was rebuilt does not tell how this change ended. A later one "
        "followed it.";
}

std::vector<Uuid> overtakeAllButTheLast(std::vector<JournalEntry>& entries) {
    std::vector<Uuid> overtaken;
    std::unordered_map<std::string_view, JournalEntry*> activeOf;
    for (JournalEntry& entry : entries) {
        if (!entry.isActive()) continue;
        const auto [earlier, isFirst] = activeOf.try_emplace(entry.tweakID, &entry);
        if (isFirst) continue;
        overtake(*earlier->second, entry);
        overtaken.push_back(earlier->second->id);
        earlier->second = &entry;
    }
    return overtaken;
}

}  // namespace

std::vector<JournalEntry> RebuildPlan::active() const {
    std::vector<JournalEntry> active;
    std::copy_if(entries.begin(), entries.end(), std::back_inserter(active),
                 [](const JournalEntry& entry) { return entry.isActive(); });
    return active;
}

RebuildPlan planRebuild(HistoryReading history) {
    RebuildPlan plan;
    plan.torn = history.torn;
    plan.foreign = history.foreign;
    plan.unread = std::move(history.unread);
    const auto earlier = [](const HistoryLine& one, const HistoryLine& other) { return one.at < other.at; };
    if (!history.lines.empty()) {
        const auto [first, last] = std::minmax_element(history.lines.begin(), history.lines.end(), earlier);
        plan.from = first->at;
        plan.to = last->at;
    }
    plan.entries = lastOfEach(std::move(history.lines));
    plan.overtaken = overtakeAllButTheLast(plan.entries);
    return plan;
}

}  // namespace brell
