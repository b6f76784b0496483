// Journal entries made up for a test, and those of the sample files.
#pragma once

#include <string>
#include <vector>

#include "BrellCore/Journal/JournalEntry.h"

namespace brell::testing {

using Entries = std::vector<JournalEntry>;

inline TimeStamp at(const char* iso) {
    return parseIso8601(iso).value();
}

inline const TimeStamp noon = at("2026-11-15T12:00:00Z");

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

// The entries of Journal/format-1.json.
inline std::vector<JournalEntry> sampleEntries() {
    using Strings = PrefValue::StringArray;
    JournalEntry preference =
        entryOf("dock.sample",
                {{{"com.apple.dock", "autohide"}, {}, PrefValue(true)},
                 {{"com.apple.dock", "tilesize"}, PrefValue(36.5), PrefValue(36)},
                 {{"NSGlobalDomain", "été \"quoted\"\n"}, PrefValue(Strings{"a", "\\ / 😀"}), PrefValue("")}},
                at("2026-11-15T20:23:13Z"));
    preference.id = Uuid::parse("01234567-89AB-CDEF-0123-456789ABCDEF").value();
    preference.choiceID = "small";

    JournalEntry agent =
        agentEntry({"org.example.helper", "/Users/jo/Library/LaunchAgents/org.example.helper.plist", true,
                    AgentOverride::disabled},
                   at("2026-11-15T20:24:00Z"));
    agent.id = Uuid::parse("FEDCBA98-7654-3210-FEDC-BA9876543210").value();
    agent.direction = EntryDirection::resetToDefault;
    agent.status = EntryStatus::restored;
    agent.restoredAt = at("2026-11-16T00:00:00Z");
    agent.failure = "launchd refused.";
    preference.macOSVersion = agent.macOSVersion = "15.1.0";
    return {preference, agent};
}

// A fresh entry about this tweak.
inline JournalEntry entryFor(const std::string& tweakID, EntryStatus status = EntryStatus::capturing) {
    JournalEntry entry = sampleEntries().front();
    entry.id = Uuid::random();
    entry.tweakID = tweakID;
    entry.status = status;
    return entry;
}

}  // namespace brell::testing
