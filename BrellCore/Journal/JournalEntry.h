// One change of the user's machine, with everything needed to undo it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "BrellCore/Journal/AgentCapture.h"
#include "BrellCore/Preferences/PrefKey.h"
#include "BrellCore/Preferences/PrefValue.h"
#include "BrellCore/Support/EnumText.h"
#include "BrellCore/Support/Rare.h"
#include "BrellCore/Support/TimeStamp.h"
#include "BrellCore/Support/Uuid.h"

namespace brell {

struct Tweak;
class TweakCatalog;

enum class EntryKind { preference, launchAgent };
template <>
inline constexpr std::array<std::string_view, 2> enumTexts<EntryKind>{"preference", "launchAgent"};

enum class EntryDirection {
    on,              // the entry set values, or switched an agent
    resetToDefault,  // the entry removed the tweak's keys
};
template <>
inline constexpr std::array<std::string_view, 2> enumTexts<EntryDirection>{"on", "resetToDefault"};

enum class EntryStatus {
    capturing,  // originals are saved, the change is about to be made; found at start: it was interrupted
    applied,    // every write was made and verified
    failed,     // what had been written was put back; failure says why
    restored,   // undone; restoredAt says when
};
template <>
inline constexpr std::array<std::string_view, 4> enumTexts<EntryStatus>{"capturing", "applied", "failed",
                                                                        "restored"};

struct JournaledWrite {
    PrefKey key;
    StoredValue original;  // the exact reading before the change
    StoredValue written;   // what the change stored; absent for a removal
    bool operator==(const JournaledWrite&) const = default;
};

struct JournalEntry {
    Uuid id;
    std::string tweakID;  // "agent:" and the label for a LaunchAgent
    EntryKind kind;
    EntryDirection direction;
    std::vector<JournaledWrite> writes;  // in the order written; empty for a LaunchAgent
    EntryStatus status;
    TimeStamp appliedAt;
    std::optional<TimeStamp> restoredAt;
    std::string macOSVersion;  // "15.1.0"
    Rare<AgentCapture> agent;
    std::optional<std::string> choiceID;
    Rare<std::string> failure;

    // The change may be in force and must be undone by a restore; an interrupted one counts on purpose.
    bool isActive() const { return status == EntryStatus::capturing || status == EntryStatus::applied; }
    // A LaunchAgent's that does not say how the agent was, as one edited by hand may be: it can only be
    // closed.
    bool lacksCapture() const { return kind == EntryKind::launchAgent && !agent; }
    bool operator==(const JournalEntry&) const = default;
};

// The journal's key of a LaunchAgent's changes.
inline std::string agentTweakID(std::string_view label) {
    return "agent:" + std::string(label);
}

// To be shown: the tweak's title or the agent's label; the id of a tweak that the catalog does not have any
// more.
std::string entryTitle(const JournalEntry& entry, const TweakCatalog& catalog);

// The tweak that the entry changed; nullptr where the catalog has none of that id, or one that writes other
// keys or types, as another Brell may have had it.
const Tweak* tweakOf(const JournalEntry& entry, const TweakCatalog& catalog);

// The active change of this tweak or agent among these entries; nullptr when there is none.
const JournalEntry* activeEntry(const std::vector<JournalEntry>& entries, std::string_view tweakID);

}  // namespace brell
