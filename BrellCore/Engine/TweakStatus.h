// The state of a tweak in the user's preferences now, and who is responsible for it.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "BrellCore/Catalog/Tweak.h"
#include "BrellCore/Journal/JournalError.h"
#include "BrellCore/Preferences/StoreError.h"
#include "BrellCore/Support/Uuid.h"

namespace brell {

class Journal;
class PreferenceStore;

struct OnByBrell {  // an active change of ours set values, and nobody else changed them since
    Uuid entry;
    bool operator==(const OnByBrell&) const = default;
};
struct OffByBrell {  // an active change of ours removed the keys
    Uuid entry;
    bool operator==(const OffByBrell&) const = default;
};
struct ChangedOutsideBrell {  // drift: a key of an active change of ours holds a value that is not ours
    Uuid entry;
    bool operator==(const ChangedOutsideBrell&) const = default;
};
struct PerHost {
    std::string key;
    bool operator==(const PerHost&) const = default;
};
struct Managed {
    std::string key;
    bool operator==(const Managed&) const = default;
};
struct Unsupported {
    std::string message;  // "com.apple.dock persistent-apps holds a dictionary"
    bool operator==(const Unsupported&) const = default;
};
struct Off {
    bool operator==(const Off&) const = default;
};
struct OnByDefault {  // a switch whose target is macOS's own value, and nobody stored another
    bool operator==(const OnByDefault&) const = default;
};
struct SetBeforeBrell {  // the targets are stored, but not by an active change of ours
    bool operator==(const SetBeforeBrell&) const = default;
};
using TweakState = std::variant<OnByBrell, OffByBrell, ChangedOutsideBrell, PerHost, Managed, Unsupported,
                                Off, OnByDefault, SetBeforeBrell>;

// The entry of ours that the state speaks of, if any.
std::optional<Uuid> activeEntryOf(const TweakState& state);

struct TweakStatus {
    Tweak tweak;
    TweakState state;
    std::vector<StoredValue> effective;  // one for each write; empty for perHost, managed and unsupported
    std::vector<StoredValue> exact;      // likewise
    std::optional<std::string> currentChoiceID;  // of a choice tweak whose values are in effect
    bool operator==(const TweakStatus&) const = default;
};

// Why there is no status: what can't be read, except for a value of an unsupported type, which is a state.
using StatusFailure = std::variant<StoreFailure, JournalFailure>;
std::string describe(const StatusFailure& failure);
using StatusReading = std::variant<TweakStatus, StatusFailure>;

// Reads only. Looks at the journal once, at each preference file once before and, for active changes, once
// after it. One reading for each tweak, in their order. May be called from any thread.
std::vector<StatusReading> readStatuses(const std::vector<const Tweak*>& tweaks, PreferenceStore& store,
                                        Journal& journal);
// The same for one tweak; raises StoreError and JournalError.
TweakStatus readStatus(const Tweak& tweak, PreferenceStore& store, Journal& journal);

}  // namespace brell
