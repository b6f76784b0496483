#include "BrellCore/Engine/TweakStatus.h"

#include <algorithm>

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
std::optional<TweakState> readValues(const Tweak& tweak, PreferenceStore& store, TweakStatus& status) {
    for (const Write& write : tweak.writes) {
        if (store.hasByHostValue(write.key)) return PerHost{write.key.name};
        if (store.isForced(write.key)) return Managed{write.key.name};
        try {
            status.exact.push_back(store.exactValue(write.key));
            status.effective.push_back(store.effectiveValue(write.key));
        } catch (const StoreError& error) {
            const auto* unsupported = std::get_if<UnsupportedType>(&error.failure());
            if (!unsupported) throw;
            return Unsupported{unsupported->key.rendered() + " holds a " + unsupported->typeWord};
        }
    }
    return std::nullopt;
}

TweakState stateOfEntry(const JournalEntry& entry, PreferenceStore& store) {
    if (entry.status == EntryStatus::applied && hasDrifted(entry, store))
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

}  // namespace

std::optional<Uuid> activeEntryOf(const TweakState& state) {
    if (const auto* on = std::get_if<OnByBrell>(&state)) return on->entry;
    if (const auto* off = std::get_if<OffByBrell>(&state)) return off->entry;
    if (const auto* changed = std::get_if<ChangedOutsideBrell>(&state)) return changed->entry;
    return std::nullopt;
}

TweakStatus readStatus(const Tweak& tweak, PreferenceStore& store, Journal& journal) {
    TweakStatus status{tweak, Off{}, {}, {}, std::nullopt};
    if (auto state = readValues(tweak, store, status))
        return {tweak, std::move(*state), {}, {}, std::nullopt};
    status.currentChoiceID = choiceHolding(tweak, status.effective);
    const auto entry = journal.activeEntry(tweak.id);
    status.state = entry ? stateOfEntry(*entry, store) : stateWithoutEntry(tweak, status.exact);
    return status;
}

bool hasDrifted(const JournalEntry& entry, PreferenceStore& store) {
    return std::any_of(entry.writes.begin(), entry.writes.end(), [&](const JournaledWrite& write) {
        try {
            return store.exactValue(write.key) != write.written;
        } catch (const StoreError&) {
            return true;
        }
    });
}

}  // namespace brell
