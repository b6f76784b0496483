#include "BrellCore/Journal/RebuildPlan.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>
#include <unordered_map>

namespace brell {

namespace {

// In the life of a change, which never goes back.
int stageOf(EntryStatus status) {
    switch (status) {
        case EntryStatus::capturing: return 0;
        case EntryStatus::applied: return 1;
        case EntryStatus::failed:
        case EntryStatus::restored: break;
    }
    return 2;
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
    return RebuildPlanner().finish(std::move(history));
}

std::size_t RebuildPlanner::HashOfId::operator()(const Uuid& id) const noexcept {
    std::size_t hash;
    std::memcpy(&hash, id.bytes.data(), sizeof hash);  // random as it is
    return hash;
}

void RebuildPlanner::know(std::vector<JournalEntry> entries) {
    known_ = entries.size();
    for (std::size_t i = 0; i < known_; ++i) places_.emplace(entries[i].id, i);
    plan_.entries = std::move(entries);
}

void RebuildPlanner::take(std::vector<HistoryLine>& lines) {
    for (HistoryLine& line : lines) {
        plan_.from = std::min(plan_.from.value_or(line.at), line.at);
        plan_.to = std::max(plan_.to.value_or(line.at), line.at);
        const auto [known, isNew] = places_.try_emplace(line.entry.id, plan_.entries.size());
        if (isNew) {
            plan_.entries.push_back(std::move(line.entry));
            continue;
        }
        // After a journey to the west, or with the clock set back, the file of its end may stand before that
        // of its beginning; and the journal may know what the history lost.
        JournalEntry& entry = plan_.entries[known->second];
        if (stageOf(line.entry.status) >= stageOf(entry.status)) entry = std::move(line.entry);
    }
    lines.clear();
}

RebuildPlan RebuildPlanner::finish(HistoryReading rest) && {
    take(rest.lines);
    // A journal that was begun anew knows later changes than the history before it.
    if (known_ > 0 && known_ < plan_.entries.size())
        std::stable_sort(plan_.entries.begin(), plan_.entries.end(),
                         [](const JournalEntry& one, const JournalEntry& other) {
                             return one.appliedAt < other.appliedAt;
                         });
    plan_.overtaken = overtakeAllButTheLast(plan_.entries);
    plan_.torn = rest.torn;
    plan_.foreign = rest.foreign;
    plan_.unread = std::move(rest.unread);
    return std::move(plan_);
}

}  // namespace brell
