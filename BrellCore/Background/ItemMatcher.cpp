#include "BrellCore/Background/ItemMatcher.h"

#include <algorithm>
#include <utility>

#include "BrellCore/Background/JobPath.h"

namespace brell {

namespace {

constexpr std::string_view agentsFolder = "/Library/LaunchAgents/";

bool canBeAJob(const BTMItem& item) {
    return item.type == BTMItemType::legacyAgent || item.type == BTMItemType::legacyDaemon ||
           item.type == BTMItemType::other;
}

// The database may write the user's home folder as /Users/ and the user's number. A user's job file says
// where the home folder ends: at the last Library/LaunchAgents.
std::optional<std::string> pathByNumber(const LaunchAgentRecord& record, std::string_view path,
                                        std::string_view uid) {
    const std::size_t home = path.rfind(agentsFolder);
    if (record.scope != AgentScope::user || home == std::string_view::npos) return std::nullopt;
    return "/Users/" + std::string(uid) + std::string(path.substr(home));
}

}  // namespace

void ItemMatcher::Index::addInFront(std::string_view key, std::size_t item) {
    const auto [entry, isNew] = first_.try_emplace(key, item);
    if (!isNew) next_[item] = std::exchange(entry->second, item);
}

std::size_t ItemMatcher::Index::firstLeft(std::string_view key, const std::vector<bool>& taken) {
    const auto entry = first_.find(key);
    if (entry == first_.end()) return none;
    std::size_t& first = entry->second;  // what was taken once is never looked at again
    while (first != none && taken[first]) first = next_[first];
    return first;
}

ItemMatcher::ItemMatcher(const std::vector<const BTMItem*>& items, std::uint32_t uid)
    : items_(items),
      uid_(std::to_string(uid)),
      paths_(items.size()),
      taken_(items.size(), false),
      byIdentifier_(items.size()),
      byPath_(items.size()),
      byBundle_(items.size()) {
    for (std::size_t i = items.size(); i-- > 0;) {
        const BTMItem& item = *items[i];
        if (!canBeAJob(item)) continue;
        byIdentifier_.addInFront(item.strippedIdentifier(), i);
        if (item.bundleID) byBundle_.addInFront(*item.bundleID, i);
        if (item.url) paths_[i] = pathOfItemUrl(*item.url);
        if (paths_[i]) byPath_.addInFront(*paths_[i], i);
    }
}

const BTMItem* ItemMatcher::take(const LaunchAgentRecord& record) {
    std::size_t first = none;
    const auto consider = [&](Index& index, std::string_view key) {
        first = std::min(first, index.firstLeft(key, taken_));
    };
    if (record.label() && !record.label()->empty()) {
        consider(byIdentifier_, *record.label());
        consider(byBundle_, *record.label());
    }
    const std::string path = standardizedPath(record.plist.path);
    consider(byPath_, path);
    if (const auto numbered = pathByNumber(record, path, uid_)) consider(byPath_, *numbered);
    if (first == none) return nullptr;
    taken_[first] = true;
    return items_[first];
}

}  // namespace brell
