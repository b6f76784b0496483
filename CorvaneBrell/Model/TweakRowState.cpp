#include "CorvaneBrell/Model/TweakRowState.h"

#include <algorithm>

#include "CorvaneBrell/Model/EntryWords.h"
#include "CorvaneBrell/Model/ValueWords.h"

namespace brell {

namespace {

using Weight = StateBadge::Weight;

// A state as its row shows it: the badge, and the reason when it can't be changed.
struct Shown {
    std::optional<StateBadge> badge;
    bool canChange = true;
    std::string reason = {};
};

struct ShownFor {
    Shown operator()(const OnByBrell&) const {
        return {StateBadge{"On by Brell", "checkmark.circle", Weight::good, ""}};
    }
    Shown operator()(const OffByBrell&) const {
        return {StateBadge{"Reset by Brell", "minus.circle", Weight::good, ""}};
    }
    Shown operator()(const ChangedOutsideBrell&) const {
        return {
            StateBadge{"Changed outside Brell", "exclamationmark.triangle", Weight::attention,
                       "A key no longer holds what Brell wrote. Turning it off asks before overwriting."}};
    }
    Shown operator()(const PerHost& state) const {
        return {StateBadge{"Set per host", "desktopcomputer", Weight::plain, ""}, false,
                state.key + " has a by-host value; Brell does not change it here."};
    }
    Shown operator()(const Managed& state) const {
        return {StateBadge{"Managed by a profile", "lock", Weight::plain, ""}, false,
                state.key + " is forced by a management profile; a change would have no effect."};
    }
    Shown operator()(const Unsupported& state) const {
        return {StateBadge{"Unexpected type", "questionmark.circle", Weight::attention, ""}, false,
                state.message + ". Brell does not change a value of this kind."};
    }
    Shown operator()(const Off&) const { return {}; }
    Shown operator()(const OnByDefault&) const {
        return {std::nullopt, false, "macOS already does this.\nNothing to change."};
    }
    Shown operator()(const SetBeforeBrell&) const {
        return {StateBadge{"Set before Brell", "person", Weight::plain,
                           "Set before Brell, by you or another app. Turning it off resets this to the macOS "
                           "default; Brell can undo that."}};
    }
};

const StateBadge interruptedBadge{
    "Interrupted", "bolt.slash", Weight::attention,
    "Brell was interrupted while changing this. What was there before is saved, and "
    "the way back puts it there again."};
const StateBadge partlyBackBadge{"Not in force", "exclamationmark.triangle", Weight::attention,
                                 "A key holds again what it held before Brell, although the change is still "
                                 "listed as active. Restoring it closes the change without a question."};
const StateBadge unknownBadge{"Not known", "questionmark.circle", Weight::plain, ""};

const JournaledWrite* writeOf(const PrefKey& key, const JournalEntry* active) {
    if (!active) return nullptr;
    for (const JournaledWrite& write : active->writes)
        if (write.key == key) return &write;
    return nullptr;
}

std::optional<StoredValue> valueAt(const std::vector<StoredValue>& values, std::size_t i) {
    return i < values.size() ? std::optional(values[i]) : std::nullopt;
}

std::vector<KeyFacts> keyFacts(const Tweak& tweak, const TweakStatus* status, const JournalEntry* active) {
    std::vector<KeyFacts> facts;
    for (std::size_t i = 0; i < tweak.writes.size(); ++i) {
        const Write& write = tweak.writes[i];
        const JournaledWrite* ours = writeOf(write.key, active);
        facts.push_back({write.key, std::string(write.target.typeName()),
                         status ? valueAt(status->exact, i) : std::nullopt,
                         status ? valueAt(status->effective, i) : std::nullopt, write.target,
                         ours ? std::optional(ours->original) : std::nullopt});
    }
    return facts;
}

// A key of an applied change holds its original again: an undo could not be finished or recorded, or an app
// wrote back what it still knew.
bool isPartlyBack(const TweakStatus& status, const JournalEntry& active) {
    const bool isOurs =
        std::holds_alternative<OnByBrell>(status.state) || std::holds_alternative<OffByBrell>(status.state);
    if (!isOurs || active.status != EntryStatus::applied) return false;
    for (std::size_t i = 0; i < status.exact.size(); ++i)
        if (const auto* ours = writeOf(status.tweak.writes[i].key, &active);
            ours && status.exact[i] != ours->written)
            return true;
    return false;
}

std::optional<std::string> storedText(const TweakStatus& status) {
    if (status.exact.empty() || !status.exact.front().value) return std::nullopt;
    const auto* text = status.exact.front().value->as<std::string>();
    return text ? std::optional(*text) : std::nullopt;
}

std::vector<StoredValue> originals(const std::vector<KeyFacts>& keys) {
    std::vector<StoredValue> values;
    for (const KeyFacts& key : keys)
        if (key.original) values.push_back(*key.original);
    return values;
}

RowUndo undoOf(const JournalEntry& active, const Tweak& tweak, const std::vector<KeyFacts>& keys,
               const AppModel& model) {
    const bool isAsNow = tweakOf(active, model.catalog()) != nullptr;
    return {active.id, isAsNow ? valueWords(tweak, originals(keys), model.catalog().home()) : wayBack(active),
            std::any_of(active.writes.begin(), active.writes.end(),
                        [](const JournaledWrite& write) { return !write.original.isAbsent(); }),
            originWords(active, model.catalog().home(), model.macOSVersion())};
}

// Also a value of another type, such as "YES" or 1 for true: some apps take it for the same.
bool mayMean(const StoredValue& stored, const PrefValue& target) {
    return stored == target || (stored.value && stored.value->typeName() != target.typeName());
}

// Nothing where the keys were not read, since what decides is not what the switch would write, and where a
// switch may be either.
std::optional<bool> positionOf(const TweakStatus& status) {
    if (std::holds_alternative<OnByDefault>(status.state)) return true;
    if (status.exact.empty()) return std::nullopt;
    const std::vector<StoredValue>& exact = status.exact;
    const std::vector<PrefValue> targets = status.tweak.targets();
    if (std::equal(exact.begin(), exact.end(), targets.begin(), targets.end())) return true;
    const bool isSwitch = std::holds_alternative<ToggleKind>(status.tweak.kind);
    const bool mayBeOn = std::equal(exact.begin(), exact.end(), targets.begin(), targets.end(), mayMean);
    return isSwitch && mayBeOn ? std::nullopt : std::optional(false);
}

std::string nowWords(const Tweak& tweak, const TweakRowState& row, const TweakStatus& status,
                     std::string_view home) {
    if (status.exact.empty()) return unknownBadge.text;
    if (std::holds_alternative<ToggleKind>(tweak.kind) && row.isOn) return *row.isOn ? "On" : "Off";
    if (const auto* kind = std::get_if<ChoiceKind>(&tweak.kind))
        for (const Choice& choice : kind->choices)
            if (choice.id == row.choiceID) return choice.title;
    return row.nothingStored ? "macOS default" : valueWords(tweak, status.exact, home);
}

bool isInterrupted(const JournalEntry& entry, const AppState& state) {
    return std::any_of(state.interrupted.begin(), state.interrupted.end(),
                       [&](const JournalEntry& one) { return one.id == entry.id; });
}

}  // namespace

TweakRowState tweakRowState(const AppModel& model, const Tweak& tweak) {
    const AppState& state = model.state();
    const JournalEntry* active = activeEntry(state.entries, tweak.id);
    const auto found = state.statuses.find(tweak.id);
    const TweakStatus* status = found == state.statuses.end() ? nullptr : &found->second;

    TweakRowState row;
    row.keys = keyFacts(tweak, status, active);
    const int major = parseOSVersion(model.macOSVersion()).major;
    row.confirmed = (tweak.isConfirmed(major) ? "Confirmed on macOS " : "Not confirmed on macOS ") +
                    std::to_string(major);
    if (active) row.undo = undoOf(*active, tweak, row.keys, model);
    row.canUndo = active && !isLocked(state);
    if (!status) {
        const auto error = state.statusErrors.find(tweak.id);
        row.badge = unknownBadge;
        row.now = unknownBadge.text;
        if (state.journalError) return row;  // which is told once for all rows
        row.reason = error != state.statusErrors.end() ? error->second : "Not offered on this macOS.";
        return row;
    }
    Shown shown = std::visit(ShownFor{}, status->state);
    // Nobody can say who set it without the journal.
    if (state.startupError && std::holds_alternative<SetBeforeBrell>(status->state)) shown.badge.reset();
    row.badge = active && isInterrupted(*active, state)    ? interruptedBadge
                : active && isPartlyBack(*status, *active) ? partlyBackBadge
                                                           : std::move(shown.badge);
    row.isOn = positionOf(*status);
    row.canChange = shown.canChange && !isLocked(state);
    row.reason = std::move(shown.reason);
    // In plain sight: the way back in the row asks for nothing.
    if (row.reason.empty() && active)
        row.reason = cameFromElsewhere(*active, model.catalog().home(), model.macOSVersion()).value_or("");
    row.choiceID = status->currentChoiceID;
    row.nothingStored =
        !status->exact.empty() && std::all_of(status->exact.begin(), status->exact.end(),
                                              [](const StoredValue& value) { return value.isAbsent(); });
    if (std::holds_alternative<FolderKind>(tweak.kind)) row.folder = storedText(*status);
    row.now = nowWords(tweak, row, *status, model.catalog().home());
    return row;
}

}  // namespace brell
