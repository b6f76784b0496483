#include "CorvaneBrell/Model/PresetPlan.h"

#include <fmt/format.h>

#include <algorithm>

#include "BrellCore/Preferences/NeverTouch.h"
#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Model/ValueWords.h"

namespace brell {

namespace {

using Outcome = decltype(PresetStep::outcome);

bool setsTheTargets(const JournalEntry& entry, const Tweak& tweak) {
    return std::equal(entry.writes.begin(), entry.writes.end(), tweak.writes.begin(), tweak.writes.end(),
                      [](const JournaledWrite& made, const Write& write) {
                          return made.key == write.key && made.written == write.target;
                      });
}

bool isSo(const TweakStatus& status, const Tweak& tweak, const JournalEntry* active) {
    if (!active)
        return std::holds_alternative<SetBeforeBrell>(status.state) ||
               std::holds_alternative<OnByDefault>(status.state);
    return active->status == EntryStatus::applied && std::holds_alternative<OnByBrell>(status.state) &&
           setsTheTargets(*active, tweak);
}

// The key of that name with its domain.
std::string renderedKey(const Tweak& tweak, const std::string& name) {
    for (const Write& write : tweak.writes)
        if (write.key.name == name) return write.key.rendered();
    return name;
}

// Why a tweak in this state can't be changed; empty when it can.
struct StateRefusal {
    const Tweak& tweak;
    std::string operator()(const PerHost& state) const {
        return renderedKey(tweak, state.key) + " is set per host; Brell does not change it here.";
    }
    std::string operator()(const Managed& state) const {
        return renderedKey(tweak, state.key) + " is managed by a profile; a change would have no effect.";
    }
    std::string operator()(const Unsupported& state) const {
        return state.message + ", which Brell does not change.";
    }
    std::string operator()(const auto&) const { return {}; }
};

// In the order in which the engine looks at these.
std::string refusal(const Tweak& tweak, const TweakState& state, const JournalEntry* active) {
    if (active)
        return fmt::format("{} already has an active change ({}); turn it off first.", tweak.title,
                           rawValue(active->status));
    for (const Write& write : tweak.writes)
        if (NeverTouch::isForbiddenDomain(write.key.domain)) return write.key.domain + " is never changed.";
    return std::visit(StateRefusal{tweak}, state);
}

Outcome changes(const Tweak& tweak, const std::vector<StoredValue>& exact, std::string_view home) {
    std::vector<StoredValue> targets;
    for (const Write& write : tweak.writes) targets.emplace_back(write.target);
    WouldChange changes{{},
                        "from " + valueWords(tweak, exact, home) + " to " + valueWords(tweak, targets, home)};
    for (std::size_t i = 0; i < tweak.writes.size(); ++i)
        if (const Write& write = tweak.writes[i]; exact.at(i) != write.target)
            changes.keys.push_back({write.key, exact[i], write.target});
    return changes;
}

Outcome outcomeOf(const Tweak& tweak, const PresetSurroundings& now) {
    if (!tweak.isAvailable(now.macOSMajor))
        return WouldBeRefused{fmt::format("{} is not offered on macOS {}.", tweak.title, now.macOSMajor)};
    if (const auto error = now.statusErrors.find(tweak.id); error != now.statusErrors.end())
        return WouldBeRefused{error->second};
    const auto status = now.statuses.find(tweak.id);
    if (status == now.statuses.end()) return WouldBeRefused{tweak.title + " has not been read yet."};

    const JournalEntry* active = activeEntry(now.entries, tweak.id);
    if (isSo(status->second, tweak, active)) return AlreadySo{};
    if (std::string reason = refusal(tweak, status->second.state, active); !reason.empty())
        return WouldBeRefused{std::move(reason)};
    return changes(tweak, status->second.exact, now.catalog.home());
}

// Why a preset can't carry this active change, a sentence; empty when it can.
std::string whyLeftOut(const JournalEntry& entry, const TweakCatalog& catalog) {
    if (entry.kind == EntryKind::launchAgent) return "It is a login item; presets hold settings only.";
    const Tweak* tweak = catalog.tweak(entry.tweakID);
    if (!tweak) return "It is no setting that this version of Brell knows.";
    if (entry.status == EntryStatus::capturing)
        return "It was interrupted; restore it or apply it again first.";
    if (entry.direction == EntryDirection::resetToDefault)
        return "It was reset to the macOS default; presets only turn tweaks on.";
    if (tweak->risk == Risk::experimental) return "It is experimental; presets never apply it.";
    if (std::holds_alternative<FolderKind>(tweak->kind))
        return "It holds a folder of this Mac; presets do not carry folders.";
    if (!setsTheTargets(entry, *tweak))
        return "It is set to another choice than its own; presets do not carry choices.";
    return {};
}

}  // namespace

std::string KeyChange::rendered() const {
    return key.rendered() + " from " + excerpt(from.rendered()) + " to " + excerpt(to.rendered());
}

std::vector<std::string> PresetPlan::toApply() const {
    std::vector<std::string> ids;
    for (const PresetStep& step : steps)
        if (std::holds_alternative<WouldChange>(step.outcome)) ids.push_back(step.tweakID);
    return ids;
}

PresetPlan planPreset(const Preset& preset, const PresetSurroundings& now) {
    PresetValidation validation = Presets::validate(preset, now.catalog);
    PresetPlan plan{preset, {}, std::move(validation.unknown), std::move(validation.experimental)};
    plan.preset.name = oneLine(preset.name);
    for (const std::string& id : validation.valid) {
        const Tweak& tweak = *now.catalog.tweak(id);
        plan.steps.push_back({id, tweak.title, outcomeOf(tweak, now)});
    }
    return plan;
}

std::vector<ExportRow> exportRows(const std::vector<JournalEntry>& entries, const ChangeTitles& titles) {
    const TweakCatalog& catalog = titles.catalog();
    std::vector<ExportRow> rows;
    for (const Tweak& tweak : catalog.all())
        if (const auto* entry = activeEntry(entries, tweak.id); entry && whyLeftOut(*entry, catalog).empty())
            rows.push_back({tweak.id, tweak.title, {}});
    for (const JournalEntry& entry : entries)
        if (entry.isActive())
            if (std::string whyNot = whyLeftOut(entry, catalog); !whyNot.empty())
                rows.push_back({entry.tweakID, titles.of(entry), std::move(whyNot)});
    return rows;
}

Preset ownPreset(std::string name, std::vector<std::string> tweakIDs) {
    std::string id = PresetFile::slug(name);
    return {.id = std::move(id),
            .name = std::move(name),
            .summary = "Made of the changes that were active on this Mac.",
            .tweakIDs = std::move(tweakIDs)};
}

}  // namespace brell
