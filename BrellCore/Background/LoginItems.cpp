#include "BrellCore/Background/LoginItems.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <tuple>
#include <unordered_set>
#include <utility>

#include "BrellCore/Background/CollationKey.h"
#include "BrellCore/Background/ItemMatcher.h"
#include "BrellCore/Background/JobPath.h"
#include "BrellCore/Preferences/NeverTouch.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

constexpr std::string_view separator = " · ";
constexpr std::string_view vendorPrefix = "com.apple.";

bool isShown(BTMItemType type) {
    switch (type) {
        case BTMItemType::developer:
        case BTMItemType::dockTile:
        case BTMItemType::quicklook:
        case BTMItemType::spotlight: return false;
        case BTMItemType::app:
        case BTMItemType::loginItem:
        case BTMItemType::legacyAgent:
        case BTMItemType::legacyDaemon:
        case BTMItemType::other: break;
    }
    return true;
}

std::string_view kindText(BTMItemType type) {
    switch (type) {
        case BTMItemType::app: return "app";
        case BTMItemType::loginItem: return "login item";
        case BTMItemType::legacyAgent: return "background agent";
        case BTMItemType::legacyDaemon: return "background daemon";
        case BTMItemType::developer:
        case BTMItemType::dockTile:
        case BTMItemType::quicklook:
        case BTMItemType::spotlight:
        case BTMItemType::other: break;
    }
    return "background item";
}

// The user's items, then those of the whole machine.
std::vector<const BTMItem*> shownItems(const BTMDump* btm, std::uint32_t uid) {
    std::vector<const BTMItem*> items;
    if (!btm) return items;
    std::vector<std::int64_t> sections{uid, -2};
    if (uid != 0) sections.push_back(0);  // root's own are the machine's
    for (const std::int64_t section : sections)
        for (const BTMItem& item : btm->items(section))
            if (isShown(item.type)) items.push_back(&item);
    return items;
}

// An empty text names nothing.
std::optional<std::string> nonEmpty(const std::optional<std::string>& text) {
    return text && !text->empty() ? text : std::nullopt;
}

std::string subtitle(std::string_view name, std::string_view rest) {
    return excerpt(name) + std::string(separator) + excerpt(rest, mostOfASentence);
}

LoginItemBadge badgeOf(const LaunchAgentRecord& record) {
    if (record.scope != AgentScope::user) return LoginItemBadge::adminOnly;
    // Without a label launchd can't address it.
    return nonEmpty(record.label()) ? LoginItemBadge::toggleable : LoginItemBadge::appManaged;
}

bool isOn(const LaunchAgentRecord& record, const BTMItem* item) {
    if (record.scope != AgentScope::user && item) return item->enabled;
    return record.override != AgentOverride::disabled;
}

AgentExplanation explanationOf(const LaunchAgentRecord& record, const BTMItem* item) {
    if (record.plist.leadsTo)
        return {excerpt(std::filesystem::path(record.plist.path).stem().string()),
                "A link to " + excerpt(*record.plist.leadsTo, mostOfASentence) +
                    ". Brell does not look behind it, so that macOS need not ask you about that folder.",
                "Brell can't tell what it starts.", Risk::low, false};
    return AgentExplainer::explain(record.label().value_or(""), item ? item->teamID : std::nullopt,
                                   record.plist.executable());
}

LoginItemRow rowOf(const LaunchAgentRecord& record, const BTMItem* item) {
    AgentExplanation explanation = explanationOf(record, item);
    const std::string name =
        nonEmpty(record.label()).value_or(std::filesystem::path(record.plist.path).filename().string());
    return {std::string(rawValue(record.scope)) + ":" + record.plist.path,
            explanation.app,
            subtitle(name, record.plist.trigger()),
            badgeOf(record),
            record,
            item ? std::optional(*item) : std::nullopt,
            explanation,
            record.loaded.isCrashLooping(),
            item ? std::optional(item->allowed) : std::nullopt,
            isOn(record, item)};
}

// The program that the item runs, as far as its URL says so: an application, but not a job file.
std::optional<std::string> executableOf(const BTMItem& item) {
    auto path = item.url ? pathOfItemUrl(*item.url) : std::nullopt;
    if (!path || path->ends_with(".plist")) return std::nullopt;
    if (path->ends_with(".app")) *path += '/';  // a bundle, and named like a program inside it
    return path;
}

bool isInstalledByAdministrator(const BTMItem& item) {
    return item.url && (item.url->starts_with("file:///Library/") || item.url->starts_with("/Library/"));
}

LoginItemRow rowOf(const BTMItem& item) {
    const std::string identifier(item.strippedIdentifier());
    AgentExplanation explanation = AgentExplainer::explain(identifier, item.teamID, executableOf(item));
    return {"btm:" + item.id,
            excerpt(nonEmpty(item.name).value_or(explanation.app)),
            subtitle(nonEmpty(item.developer).value_or(identifier), kindText(item.type)),
            isInstalledByAdministrator(item) ? LoginItemBadge::adminOnly : LoginItemBadge::appManaged,
            std::nullopt,
            item,
            explanation,
            false,
            item.allowed,
            item.enabled};
}

bool isHidden(const BTMItem& item) {
    const std::string_view key = item.bundleID ? std::string_view(*item.bundleID) : item.strippedIdentifier();
    return key.starts_with(vendorPrefix) || NeverTouch::isOwnLabel(key) ||
           NeverTouch::isForbiddenLabel(item.strippedIdentifier());
}

void sortRows(std::vector<LoginItemRow>& rows) {
    // The keys are made once, and what is moved about while sorting is small.
    struct Key {
        LoginItemBadge badge;
        std::string title;
        LoginItemRow* row;
    };
    std::vector<Key> keys;
    keys.reserve(rows.size());
    for (LoginItemRow& row : rows) keys.push_back({row.badge, collationKey(row.title), &row});
    std::stable_sort(keys.begin(), keys.end(), [](const Key& a, const Key& b) {
        return std::tie(a.badge, a.title, a.row->id) < std::tie(b.badge, b.title, b.row->id);
    });
    std::vector<LoginItemRow> sorted;
    sorted.reserve(rows.size());
    for (const Key& key : keys) sorted.push_back(std::move(*key.row));
    rows = std::move(sorted);
}

}  // namespace

std::string_view text(LoginItemBadge badge) {
    switch (badge) {
        case LoginItemBadge::toggleable: return "You can turn this off here";
        case LoginItemBadge::adminOnly: return "Installed by an administrator: read only";
        case LoginItemBadge::appManaged: break;
    }
    return "Added by an app: change in System Settings";
}

std::vector<LoginItemRow> LoginItemsMerger::merge(const std::vector<LaunchAgentRecord>& user,
                                                  const std::vector<LaunchAgentRecord>& system,
                                                  const BTMDump* btm, std::uint32_t uid) {
    const std::vector<const BTMItem*> items = shownItems(btm, uid);
    ItemMatcher matcher(items, uid);
    std::vector<LoginItemRow> rows;
    rows.reserve(user.size() + system.size() + items.size());

    for (const auto* records : {&user, &system})
        for (const LaunchAgentRecord& record : *records)
            if (!record.label() || !NeverTouch::isOwnLabel(*record.label()))
                rows.push_back(rowOf(record, matcher.take(record)));

    std::unordered_set<std::string_view> used;
    for (std::size_t i = 0; i < items.size(); ++i)
        if (!matcher.isTaken(i) && !isHidden(*items[i]) && used.insert(items[i]->id).second)
            rows.push_back(rowOf(*items[i]));

    sortRows(rows);
    return rows;
}

}  // namespace brell
