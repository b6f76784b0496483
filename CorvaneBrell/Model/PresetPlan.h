// A preset's effect before it is applied, and a preset made of the changes that are active now.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "BrellCore/Background/ChangeTitles.h"
#include "BrellCore/Catalog/Presets.h"
#include "BrellCore/Engine/TweakStatus.h"
#include "BrellCore/Journal/JournalEntry.h"

namespace brell {

using TweakStatuses = std::map<std::string, TweakStatus>;      // by tweak id
using TweakStatusErrors = std::map<std::string, std::string>;  // by tweak id

struct KeyChange {
    PrefKey key;
    StoredValue from;
    StoredValue to;
    std::string rendered() const;  // "com.apple.dock autohide from absent to true"
    bool operator==(const KeyChange&) const = default;
};

struct AlreadySo {  // nothing to do, and the engine is not to be asked
    bool operator==(const AlreadySo&) const = default;
};
struct WouldChange {
    std::vector<KeyChange> keys;  // the ones that would get another value
    std::string words;            // "from not set to On"
    bool operator==(const WouldChange&) const = default;
};
struct WouldBeRefused {
    std::string reason;  // as the engine would give it
    bool operator==(const WouldBeRefused&) const = default;
};

struct PresetStep {
    std::string tweakID;
    std::string title;
    std::variant<AlreadySo, WouldChange, WouldBeRefused> outcome;
    bool operator==(const PresetStep&) const = default;
};

struct PresetPlan {
    Preset preset;
    std::vector<PresetStep> steps;          // of the tweaks that a preset may apply, in the preset's order
    std::vector<std::string> unknown;       // ids, left out
    std::vector<std::string> experimental;  // ids, left out

    // The ids of the tweaks that would change, in order.
    std::vector<std::string> toApply() const;
    bool operator==(const PresetPlan&) const = default;
};

// This Mac as it was last read.
struct PresetSurroundings {
    const TweakCatalog& catalog;
    int macOSMajor;
    const TweakStatuses& statuses;
    const TweakStatusErrors& statusErrors;
    const std::vector<JournalEntry>& entries;
};

PresetPlan planPreset(const Preset& preset, const PresetSurroundings& now);

// An active change that could go into a preset.
struct ExportRow {
    std::string tweakID;
    std::string title;
    std::string whyNot;  // a sentence when a preset can't carry it, else empty
    bool operator==(const ExportRow&) const = default;
};

// Of every active change. First what a preset carries, tweaks set to their own targets, in the order of the
// catalog.
std::vector<ExportRow> exportRows(const std::vector<JournalEntry>& entries, const ChangeTitles& titles);
// A preset of this Mac's, with these tweaks.
Preset ownPreset(std::string name, std::vector<std::string> tweakIDs);

}  // namespace brell
