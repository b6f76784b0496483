#include "BrellCore/Journal/RebuildPlan.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

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

bool isFoundBy(const JournaledWrite& later, const JournaledWrite& earlier) {
    return later.key == earlier.key && later.original == earlier.written;
}

// An agent that was turned off is left disabled and not loaded; one that was turned on, enabled and loaded.
bool isFoundBy(const AgentCapture& later, const AgentCapture& earlier) {
    return later.turnedOn() != earlier.turnedOn() && later.wasLoaded == earlier.turnedOn();
}

// Lets the later change put back what was before the earlier one, wherever it found that in force: its
// journal knew nothing of the earlier one and took what that had written for the user's own. True when it
// did.
bool handOn(const JournalEntry& earlier, JournalEntry& later) {
    bool handsOn = false;
    for (JournaledWrite& write : later.writes)
        for (const JournaledWrite& before : earlier.writes)
            if (isFoundBy(write, before)) {
                write.original = before.original;
                handsOn = true;
            }
    if (later.agent && earlier.agent && isFoundBy(*later.agent, *earlier.agent)) {
        later.agent->wasLoaded = earlier.agent->wasLoaded;
        later.agent->override = earlier.agent->override;
        handsOn = true;
    }
    return handsOn;
}

bool hasKey(const JournalEntry& entry, const PrefKey& key) {
    return std::any_of(entry.writes.begin(), entry.writes.end(),
                       [&](const JournaledWrite& write) { return write.key == key; });
}

// Lets the later change put back what only the earlier one wrote, too: another Brell may have had other keys
// for the tweak. Of an interrupted one recovery would overwrite, unasked, what others stored there since.
bool join(const JournalEntry& earlier, JournalEntry& later) {
    if (later.status != EntryStatus::applied) return false;
    std::vector<JournaledWrite> others;
    std::copy_if(earlier.writes.begin(), earlier.writes.end(), std::back_inserter(others),
                 [&](const JournaledWrite& write) { return !hasKey(later, write.key); });
    later.writes.insert(later.writes.end(), others.begin(), others.end());
    return !others.empty();
}

// The later switch of an agent left what the earlier one had found: nothing is left to put back.
bool takesBack(const JournalEntry& later, const JournalEntry& earlier) {
    return later.status == EntryStatus::applied && earlier.status == EntryStatus::applied && later.agent &&
           earlier.agent && isFoundBy(*later.agent, *earlier.agent) &&
           isFoundBy(*earlier.agent, *later.agent);
}

void end(JournalEntry& entry, TimeStamp when, std::string how) {
    entry.status = EntryStatus::restored;
    entry.restoredAt = when;
    entry.failure = std::move(how);
}

// A tweak is changed only when its journal knows of no active change. Of an earlier one it follows either
// that this had ended, and its keys were back, or that it was still in force, and that journal had lost it.
// True in the second case.
bool overtake(JournalEntry& entry, JournalEntry& later) {
    const std::string followed =
        "The journal was lost in between and does not tell how this change ended. A later one followed it";
    if (takesBack(later, entry)) {
        end(entry, later.appliedAt, followed + ", and took it back.");
        end(later, later.appliedAt, "It took back an earlier change that its journal did not know.");
        return true;
    }
    const bool sharesKeys =
        std::any_of(entry.writes.begin(), entry.writes.end(),
                    [&](const JournaledWrite& write) { return hasKey(later, write.key); });
    bool handsOn = handOn(entry, later);
    if (handsOn || !sharesKeys) handsOn |= join(entry, later);
    end(entry, later.appliedAt,
        followed + (handsOn ? ", and puts back what was before this one wherever this was in force." : "."));
    return handsOn;
}

// Of two of one second the one that found what the other left is the later one; where each did, their order
// tells. Otherwise the later one may well write what the other had found, by chance or because the user
// wanted that back.
bool isTheEarlier(const JournalEntry& entry, const JournalEntry& other) {
    if (entry.appliedAt != other.appliedAt) return false;
    JournalEntry trial = entry;
    if (handOn(other, trial)) return false;
    trial = other;
    return handOn(entry, trial);
}

void sortByTime(std::vector<JournalEntry>& entries) {
    std::stable_sort(entries.begin(), entries.end(), [](const JournalEntry& one, const JournalEntry& other) {
        return one.appliedAt < other.appliedAt;
    });
}

// From the last one back: one in between may have been in force when the next was made, or have ended.
void overtakeAllButTheLast(RebuildPlan& plan) {
    std::unordered_map<std::string_view, JournalEntry*> lastOf;
    for (auto entry = plan.entries.rbegin(); entry != plan.entries.rend(); ++entry) {
        if (!entry->isActive()) continue;
        const auto [place, isLast] = lastOf.try_emplace(entry->tweakID, &*entry);
        if (isLast) continue;
        JournalEntry *earlier = &*entry, *later = place->second;
        if (isTheEarlier(*later, *earlier)) std::swap(earlier, later);
        if (overtake(*earlier, *later)) ++plan.handedOn;
        plan.overtaken.push_back(earlier->id);
        if (later->isActive())
            place->second = later;
        else
            lastOf.erase(place);
    }
    std::reverse(plan.overtaken.begin(), plan.overtaken.end());
}

// Of one tweak.
bool hasTwoActive(const std::vector<JournalEntry>& entries) {
    std::unordered_set<std::string_view> active;
    return std::any_of(entries.begin(), entries.end(), [&](const JournalEntry& entry) {
        return entry.isActive() && !active.insert(entry.tweakID).second;
    });
}

}  // namespace

std::vector<JournalEntry> RebuildPlan::active() const {
    std::vector<JournalEntry> active;
    std::copy_if(entries.begin(), entries.end(), std::back_inserter(active),
                 [](const JournalEntry& entry) { return entry.isActive(); });
    return active;
}

std::vector<JournalEntry> endOvertaken(const std::vector<JournalEntry>& entries) {
    if (!hasTwoActive(entries)) return {};
    RebuildPlan plan;
    plan.entries = entries;
    plan.entries = plan.active();
    sortByTime(plan.entries);
    const std::vector<JournalEntry> before = plan.entries;
    overtakeAllButTheLast(plan);
    std::vector<JournalEntry> changed;
    for (std::size_t i = 0; i < before.size(); ++i)
        if (plan.entries[i] != before[i]) changed.push_back(std::move(plan.entries[i]));
    return changed;
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
    plan_.known = entries.size();
    for (std::size_t i = 0; i < plan_.known; ++i) places_.emplace(entries[i].id, i);
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
        // of its beginning; and the journal may know what the history lost, or was handed on.
        JournalEntry& entry = plan_.entries[known->second];
        const int stages = stageOf(line.entry.status) - stageOf(entry.status);
        if (stages > 0 || (stages == 0 && known->second >= plan_.known)) entry = std::move(line.entry);
    }
    lines.clear();
}

RebuildPlan RebuildPlanner::finish(HistoryReading rest) && {
    take(rest.lines);
    // A journal that was begun anew knows later changes than the history before it.
    if (plan_.known > 0 && plan_.known < plan_.entries.size()) sortByTime(plan_.entries);
    overtakeAllButTheLast(plan_);
    plan_.torn = rest.torn;
    plan_.foreign = rest.foreign;
    plan_.unread = std::move(rest.unread);
    return std::move(plan_);
}

}  // namespace brell
