// The entries of the sample files, and others made up for a test.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "BrellCore/Journal/JournalEntry.h"
#include "Tests/Support/Entries.h"
#include "Tests/Support/Testing.h"

namespace brell::testing {

inline TimeStamp at(const char* iso) {
    return parseIso8601(iso).value();
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
