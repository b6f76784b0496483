#include "BrellCore/Engine/TweakStatus.h"

#include <algorithm>
#include <unordered_map>

#include "BrellCore/Engine/Drift.h"
#include "BrellCore/Journal/Journal.h"
#include "BrellCore/Preferences/PreferenceStore.h"

namespace brell {

namespace {

std::vector<StoredValue> stored(const std::vector<PrefValue>& values) {
    return {values.begin(), values.end()};
}

std::optional<std::string> choiceHolding(const Tweak& tweak, const std::vector<StoredValue>& values) {
    const auto* kind = std::get_if<ChoiceKind>(&tweak.kind);
    if (!kind) return std::nullopt;
    for (const Choice& choice : kind->choices)
        if (stored(choice.values) == values) return choice.id;
    return std::nullopt;
}

// Fills in the readings; the state when one of the keys is not ours to judge.
std::optional<TweakState> fillIn(TweakStatus& status, const Tweak& tweak, PreferenceReader& preferences) {
    for (const Write& write : tweak.writes) {
        if (preferences.hasByHostValue(write.key)) return PerHost{write.key.name};
        if (preferences.isForced(write.key)) return Managed{write.key.name};
        try {
            status.exact.push_back(preferences.exactValue(write.key));
            status.effective.push_back(preferences.effectiveValue(write.key));
        } catch (const StoreError& error) {
            const auto* unsupported = std::get_if<UnsupportedType>(&error.failure());
            if (!unsupported) throw;
            return Unsupported{unsupported->key.rendered() + " holds a " + unsupported->typeWord};
        }
    }
    return std::nullopt;
}

TweakState stateOfEntry(const JournalEntry& entry, PreferenceReader& preferences) {
    if (entry.status == EntryStatus::applied && hasDrifted(entry, preferences))
        return ChangedOutsideBrell{entry.id};
    switch (entry.direction) {
        case EntryDirection::on: return OnByBrell{entry.id};
        case EntryDirection::resetToDefault: return OffByBrell{entry.id};
    }
    return Off{};
}

TweakState stateWithoutEntry(const Tweak& tweak, const std::vector<StoredValue>& exact) {
    if (exact == stored(tweak.targets())) return SetBeforeBrell{};
    const bool nothingStored =
        std::all_of(exact.begin(), exact.end(), [](const StoredValue& value) { return value.isAbsent(); });
    const bool targetsAreDefaults =
        std::all_of(tweak.writes.begin(), tweak.writes.end(),
                    [](const Write& write) { return write.systemDefault == write.target; });
    if (nothingStored && targetsAreDefaults && std::holds_alternative<ToggleKind>(tweak.kind))
        return OnByDefault{};
    return Off{};
}

// A status as far as the preferences alone tell it.
struct Values {
    TweakStatus status;
    bool isFinal;  // a key is not ours to judge, whatever the journal says
};

std::variant<Values, StoreFailure> readValues(const Tweak& tweak, PreferenceReader& preferences) try {
    TweakStatus status{tweak, Off{}, {}, {}, std::nullopt};
    if (auto state = fillIn(status, tweak, preferences))
        return Values{{tweak, std::move(*state), {}, {}, std::nullopt}, true};
    status.currentChoiceID = choiceHolding(tweak, status.effective);
    return Values{std::move(status), false};
} catch (const StoreError& error) {
    return error.failure();
}

using EntriesByTweak = std::unordered_map<std::string, JournalEntry>;

std::variant<EntriesByTweak, JournalFailure> activeEntries(Journal& journal) try {
    EntriesByTweak byTweak;
    for (JournalEntry& entry : journal.active()) {
        std::string tweakID = entry.tweakID;
        byTweak.try_emplace(std::move(tweakID), std::move(entry));
    }
    return byTweak;
} catch (const JournalError& error) {
    return error.failure();
}

StatusReading completed(std::variant<Values, StoreFailure> reading,
                        const std::variant<EntriesByTweak, JournalFailure>& active,
                        PreferenceReader& preferences) {
    if (auto* failure = std::get_if<StoreFailure>(&reading)) return std::move(*failure);
    auto& [status, isFinal] = std::get<Values>(reading);
    if (isFinal) return std::move(status);
    if (const auto* failure = std::get_if<JournalFailure>(&active)) return *failure;
    const auto& entries = std::get<EntriesByTweak>(active);
    const auto entry = entries.find(status.tweak.id);
    status.state = entry == entries.end() ? stateWithoutEntry(status.tweak, status.exact)
                                          : stateOfEntry(entry->second, preferences);
    return std::move(status);
}

struct Raise {
    void operator()(const StoreFailure& failure) const { throw StoreError(failure); }
    void operator()(const JournalFailure& failure) const { throw JournalError(failure); }
};

}  // namespace

std::optional<Uuid> activeEntryOf(const TweakState& state) {
    if (const auto* on = std::get_if<OnByBrell>(&state)) return on->entry;
    if (const auto* off = std::get_if<OffByBrell>(&state)) return off->entry;
    if (const auto* changed = std::get_if<ChangedOutsideBrell>(&state)) return changed->entry;
    return std::nullopt;
}

std::string describe(const StatusFailure& failure) {
    return std::visit([](const auto& one) { return brell::describe(one); }, failure);
}

// The journal after the preferences: a change made in between then shows as one of ours.
std::vector<StatusReading> readStatuses(const std::vector<const Tweak*>& tweaks, PreferenceStore& store,
                                        Journal& journal) {
    const auto before = store.reader();
    std::vector<std::variant<Values, StoreFailure>> values;
    for (const Tweak* tweak : tweaks) values.push_back(readValues(*tweak, *before));
    const auto active = activeEntries(journal);
    const auto after = store.reader();
    std::vector<StatusReading> readings;
    for (auto& one : values) readings.push_back(completed(std::move(one), active, *after));
    return readings;
}

TweakStatus readStatus(const Tweak& tweak, PreferenceStore& store, Journal& journal) {
    StatusReading reading = std::move(readStatuses({&tweak}, store, journal).front());
    if (const auto* failure = std::get_if<StatusFailure>(&reading)) std::visit(Raise(), *failure);
    return std::get<TweakStatus>(std::move(reading));
}

}  // namespace brell
