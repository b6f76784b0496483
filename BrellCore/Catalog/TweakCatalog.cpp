#include "BrellCore/Catalog/TweakCatalog.h"

#include <stdexcept>

#include "BrellCore/Catalog/CatalogTable.h"
#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

// path below folder; the folder with a slash at its end when path is empty.
std::string inFolder(const std::string& folder, std::string_view path) {
    return folder + (folder.ends_with('/') ? "" : "/") + std::string(path);
}

Tweak make(TweakGroup group, EffectClass groupEffect, CatalogTable::Row row) {
    const EffectClass effect = row.effect.value_or(groupEffect);
    Explanation explanation =
        explain(row.writes, row.kind, effect, row.risk, std::string(row.what), row.riskNote);
    return {.id = std::string(row.id),
            .group = group,
            .title = std::string(row.title),
            .writes = std::move(row.writes),
            .kind = std::move(row.kind),
            .effect = effect,
            .risk = row.risk,
            .explanation = std::move(explanation),
            .availableMajors = std::nullopt,
            .confirmedOn = row.confirmedOn26 ? std::set{26} : std::set<int>(),
            .searchWords = std::string(row.searchWords)};
}

std::vector<Tweak> builtIn(const std::string& home, const std::string& homeFileURL) {
    using enum EffectClass;
    std::vector<Tweak> tweaks;
    const auto add = [&](TweakGroup group, EffectClass effect, std::vector<CatalogTable::Row> rows) {
        for (CatalogTable::Row& row : rows) tweaks.push_back(make(group, effect, std::move(row)));
    };
    add(TweakGroup::finder, finderRelaunch, CatalogTable::finder(homeFileURL));
    add(TweakGroup::dock, dockRelaunch, CatalogTable::dock());
    add(TweakGroup::missionControl, dockRelaunch, CatalogTable::missionControl());
    add(TweakGroup::animations, nextAppLaunch, CatalogTable::animations());
    add(TweakGroup::keyboardText, nextAppLaunch, CatalogTable::keyboardText());
    add(TweakGroup::panelsDocuments, nextAppLaunch, CatalogTable::panelsDocuments());
    add(TweakGroup::screenshots, immediate,
        CatalogTable::screenshots(inFolder(home, "Pictures/Screenshots")));
    add(TweakGroup::misc, immediate, CatalogTable::misc());
    add(TweakGroup::privacy, immediate, CatalogTable::privacy());
    return tweaks;
}

}  // namespace

TweakCatalog::TweakCatalog(std::string home)
    : home_(std::move(home)), homeFileURL_(fileUrl(inFolder(home_, ""))), all_(builtIn(home_, homeFileURL_)) {
    for (const Tweak& tweak : all_)
        if (!byID_.emplace(tweak.id, &tweak).second)
            throw std::logic_error("Two tweaks have the id " + tweak.id + ".");
}

const DomainSet& TweakCatalog::allowedDomains() {
    static const DomainSet domains = [] {
        DomainSet set;
        for (const std::string_view domain :
             {globalDomain, Domains::finder, Domains::desktopServices, Domains::dock, Domains::screencapture,
              Domains::crashReporter, Domains::timeMachine, Domains::adLib, Domains::spotlight})
            set.emplace(domain);
        return set;
    }();
    return domains;
}

const Tweak* TweakCatalog::tweak(std::string_view id) const {
    const auto found = byID_.find(id);
    return found == byID_.end() ? nullptr : found->second;
}

std::string TweakCatalog::titleOf(std::string_view id) const {
    const Tweak* known = tweak(id);
    return known ? known->title : std::string(id);
}

std::vector<std::string> TweakCatalog::titlesOf(const std::vector<std::string>& ids) const {
    std::vector<std::string> titles;
    for (const std::string& id : ids) titles.push_back(titleOf(id));
    return titles;
}

std::vector<const Tweak*> TweakCatalog::available(int major) const {
    std::vector<const Tweak*> tweaks;
    for (const Tweak& tweak : all_)
        if (tweak.isAvailable(major)) tweaks.push_back(&tweak);
    return tweaks;
}

}  // namespace brell
