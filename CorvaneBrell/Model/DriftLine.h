// What somebody else did to a change of ours, in one line a key or agent.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "BrellCore/Background/AgentSteps.h"
#include "BrellCore/Journal/JournalEntry.h"

namespace brell {

class PreferenceStore;

struct DriftedEntry {
    JournalEntry entry;
    std::vector<std::string> lines;  // one for each key that no longer holds what was written
    bool operator==(const DriftedEntry&) const = default;
};

// "com.apple.dock autohide: now absent; Brell wrote true; original false"
std::string driftLine(const JournaledWrite& write, PreferenceStore& store);

// Reads every key of the entry now. Raises nothing; a key that can't be read counts as drifted.
DriftedEntry driftedEntry(const JournalEntry& entry, PreferenceStore& store);

// An agent that Brell switched and that somebody switched again.
struct AgentDrift {
    JournalEntry entry;
    std::string line;  // "com.acme.agent: now override enabled, loaded; Brell left override disabled, ..."
    bool operator==(const AgentDrift&) const = default;
};

// now is what launchd says about the entry's label. Nothing for an entry that is not applied or not an
// agent's, and where launchd could not say.
std::optional<AgentDrift> agentDrift(const JournalEntry& entry, const AgentState& now);

}  // namespace brell
