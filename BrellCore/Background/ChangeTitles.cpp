#include "BrellCore/Background/ChangeTitles.h"

#include <utility>

namespace brell {

namespace {

std::string nameOf(const std::string& label, const std::optional<std::string>& executable) {
    return AgentExplainer::explain(label, std::nullopt, executable).app;
}

}  // namespace

ChangeTitles::ChangeTitles(const TweakCatalog& catalog, AgentFolder agents)
    : catalog_(catalog), agents_(std::move(agents)) {}

void ChangeTitles::learn(const std::vector<LoginItemRow>& rows) {
    const std::lock_guard lock(mutex_);
    for (const LoginItemRow& row : rows)
        if (row.record && row.record->scope == AgentScope::user && row.record->label())
            names_.insert_or_assign(*row.record->label(), row.title);
}

// A journal may name any path; macOS may ask the user before it lets a program look into other folders. A
// capture has its path without links.
void ChangeTitles::learn(const JournalEntry& entry) {
    if (!entry.agent || knows(entry.agent->label)) return;
    const std::filesystem::path file(entry.agent->plistPath);
    if (!agents_.isDirectlyInside(file)) return;
    std::string name = nameOf(entry.agent->label, LaunchAgentPlist::read(file, LinksOut::left).executable());
    const std::lock_guard lock(mutex_);
    names_.emplace(entry.agent->label, std::move(name));
}

bool ChangeTitles::knows(const std::string& label) const {
    const std::lock_guard lock(mutex_);
    return names_.contains(label);
}

std::string ChangeTitles::of(const JournalEntry& entry) const {
    if (!entry.agent) return entryTitle(entry, catalog_);
    const std::lock_guard lock(mutex_);
    const auto known = names_.find(entry.agent->label);
    return known == names_.end() ? nameOf(entry.agent->label, std::nullopt) : known->second;
}

}  // namespace brell
