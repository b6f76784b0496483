// Journal entries made up for a test.
#pragma once

#include <string>
#include <vector>

#include "BrellCore/Journal/JournalEntry.h"

namespace brell::testing {

inline const TimeStamp noon = parseIso8601("2026-11-15T12:00:00Z").value();

// An applied change of preferences.
inline JournalEntry entryOf(std::string tweakID, std::vector<JournaledWrite> writes, TimeStamp at = noon) {
    JournalEntry entry{};
    entry.id = Uuid::random();
    entry.tweakID = std::move(tweakID);
    entry.writes = std::move(writes);
    entry.status = EntryStatus::applied;
    entry.appliedAt = at;
    entry.macOSVersion = "26.1.0";
    return entry;
}

// An applied switch of an agent.
inline JournalEntry agentEntry(AgentCapture capture, TimeStamp at = noon) {
    JournalEntry entry = entryOf(agentTweakID(capture.label), {}, at);
    entry.kind = EntryKind::launchAgent;
    entry.agent = std::move(capture);
    return entry;
}

}  // namespace brell::testing
