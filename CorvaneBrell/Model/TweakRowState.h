// The contents of one tweak's row, and the ways in which it can be changed.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "CorvaneBrell/Model/AppModel.h"

namespace brell {

// A word or two that say who set the value.
struct StateBadge {
    enum class Weight { plain, good, attention };
    std::string text;
    std::string symbol;  // the system's name of it
    Weight weight;
    std::string help;  // a sentence; may be empty
    bool operator==(const StateBadge&) const = default;
};

struct KeyFacts {
    PrefKey key;
    std::string type;                   // of the value that would be written: "bool"
    std::optional<StoredValue> stored;  // nothing where it was not read
    std::optional<StoredValue> seenByApps;
    PrefValue target;
    std::optional<StoredValue> original;  // while a change of ours is active
    bool operator==(const KeyFacts&) const = default;
};

// The way back from the active change of ours.
struct RowUndo {
    Uuid entry;
    std::string leadsTo;                    // "41", "Large", "On", "not set"
    bool leadsToAValue;                     // something was stored before Brell
    std::optional<std::string> otherMacOS;  // a sentence when the change was made on another version
    bool operator==(const RowUndo&) const = default;
};

struct TweakRowState {
    std::optional<StateBadge> badge;
    std::optional<bool> isOn;  // as it is stored; nothing where that is not known
    bool canChange = false;
    bool canUndo = false;
    std::string reason;  // why it can't be changed, or what there is to know: whole sentences; may be empty
    std::optional<std::string> choiceID;  // of the choice in effect
    bool nothingStored = false;           // every key is absent: macOS's own values are in effect
    std::optional<std::string> folder;    // the path that is stored; nothing when none is, or was read
    std::string now;  // what is stored, in everyday words: "Large", "not set", "Not known"
    std::vector<KeyFacts> keys;
    std::string confirmed;  // "Confirmed on macOS 26"
    std::optional<RowUndo> undo;
    bool operator==(const TweakRowState&) const = default;
};

// From what the model last read.
TweakRowState tweakRowState(const AppModel& model, const Tweak& tweak);

}  // namespace brell
