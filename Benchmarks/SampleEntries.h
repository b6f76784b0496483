// Journal entries such as months of use leave behind, and the files that hold them.
#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <string>

#include "BrellCore/Journal/JournalJson.h"
#include "BrellCore/Support/DurableFile.h"

namespace brell {

inline JournalEntry sampleEntry(std::size_t number) {
    constexpr std::size_t kinds = 7;
    const TimeStamp appliedAt = TimeStamp(std::chrono::seconds(1'700'000'000 + 3600 * number));
    JournalEntry entry{};
    entry.id = Uuid::random();
    entry.tweakID = "sample.tweak_" + std::to_string(number);
    entry.status = EntryStatus::restored;
    entry.appliedAt = appliedAt;
    entry.restoredAt = appliedAt + std::chrono::hours(5);
    entry.macOSVersion = "26.1.0";
    entry.writes = {{{"com.apple.dock", "autohide"}, StoredValue(), PrefValue(true)},
                    {{"com.apple.dock", "autohide-delay"}, PrefValue(0.5), PrefValue(0.05)}};
    if (number % kinds == 1) entry.choiceID = "small";
    if (number % kinds == 2) {
        entry.status = EntryStatus::failed;
        entry.restoredAt = std::nullopt;
        entry.failure = "macOS did not confirm the write to com.apple.dock.";
    }
    if (number % kinds == 3) {
        const std::string label = "org.example.helper" + std::to_string(number);
        entry.kind = EntryKind::launchAgent;
        entry.tweakID = agentTweakID(label);
        entry.writes.clear();
        entry.agent = {label, "/Users/jo/Library/LaunchAgents/" + label + ".plist", true,
                       AgentOverride::absent};
    }
    return entry;
}

// A journal file with so many entries, laid out as the journal itself does it.
inline void writeSampleJournal(const std::filesystem::path& file, std::size_t entries) {
    JsonWriter json(JsonWriter::Layout::pretty);
    json.beginObject();
    json.key("entries");
    json.beginArray();
    for (std::size_t i = 0; i < entries; ++i) writeJson(json, sampleEntry(i));
    json.endArray();
    json.key("format");
    json.integer(1);
    json.endObject();
    replaceFile(file, json.take() + "\n", Durability::readersOnly);
}

// History files of so many days with so many lines each.
inline void writeSampleHistory(const std::filesystem::path& directory, std::size_t days,
                               std::size_t linesPerDay) {
    for (std::size_t day = 0; day < days; ++day) {
        std::string lines;
        for (std::size_t i = 0; i < linesPerDay; ++i) {
            const JournalEntry entry = sampleEntry(day * linesPerDay + i);
            JsonWriter json(JsonWriter::Layout::compact);
            json.beginObject();
            json.key("at");
            json.string(iso8601(entry.appliedAt));
            json.key("entry");
            writeJson(json, entry);
            json.key("event");
            json.string(rawValue(entry.status));
            json.endObject();
            lines += json.take() + "\n";
        }
        replaceFile(directory / ("day" + std::to_string(1000 + day) + ".jsonl"), lines,
                    Durability::readersOnly);
    }
}

}  // namespace brell
