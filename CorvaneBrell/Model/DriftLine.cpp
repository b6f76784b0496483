#include "CorvaneBrell/Model/DriftLine.h"

#include <fmt/format.h>

#include "BrellCore/Preferences/PreferenceStore.h"
#include "CorvaneBrell/Model/UndoProof.h"

namespace brell {

namespace {

std::string lineFor(const JournaledWrite& write, const std::optional<StoredValue>& now) {
    return fmt::format("{}: now {}; Brell wrote {}; original {}", write.key.rendered(),
                       now ? now->rendered() : "unreadable", write.written.rendered(),
                       write.original.rendered());
}

struct AgentPosition {
    AgentOverride override;
    bool isLoaded;
    bool operator==(const AgentPosition&) const = default;

    std::string rendered() const {
        return fmt::format("override {}, {}", rawValue(override), isLoaded ? "loaded" : "not loaded");
    }
};

// What a completed switch leaves behind: the opposite of a recorded disabling, or a disabling.
AgentPosition leftBy(const AgentCapture& before) {
    if (before.override == AgentOverride::disabled) return {AgentOverride::enabled, true};
    return {AgentOverride::disabled, false};
}

}  // namespace

std::string driftLine(const JournaledWrite& write, PreferenceStore& store) {
    return lineFor(write, readIfPossible(write.key, store));
}

DriftedEntry driftedEntry(const JournalEntry& entry, PreferenceStore& store) {
    DriftedEntry drifted{entry, {}};
    for (const JournaledWrite& write : entry.writes)
        if (const auto now = readIfPossible(write.key, store); now != write.written)
            drifted.lines.push_back(lineFor(write, now));
    return drifted;
}

std::optional<AgentDrift> agentDrift(const JournalEntry& entry, const AgentState& now) {
    if (entry.status != EntryStatus::applied || !entry.agent || now.loaded.isUnknown()) return std::nullopt;
    const AgentPosition before{entry.agent->override, entry.agent->wasLoaded};
    const AgentPosition left = leftBy(*entry.agent);
    const AgentPosition found{now.override, now.loaded.isLoaded()};
    if (found == left) return std::nullopt;
    return AgentDrift{entry, fmt::format("{}: now {}; Brell left {}; original {}", entry.agent->label,
                                         found.rendered(), left.rendered(), before.rendered())};
}

}  // namespace brell
