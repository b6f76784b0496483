// A home such as years of use leave behind: a long journal and history, many LaunchAgents, a large database
// of background tasks. For tests and benchmarks of how time and memory grow.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "BrellCore/Journal/HistoryText.h"
#include "BrellCore/Journal/JournalJson.h"
#include "BrellCore/Support/DurableFile.h"
#include "Tests/Support/Entries.h"

namespace brell {

inline const std::filesystem::path sampleHome = "/Users/jo";

inline std::string sampleLabel(std::size_t number) {
    return "org.example" + std::to_string(number % 97) + ".helper" + std::to_string(number);
}

inline std::filesystem::path sampleJobFile(const std::filesystem::path& home, std::size_t number) {
    return home / "Library/LaunchAgents" / (sampleLabel(number) + ".plist");
}

inline TimeStamp sampleTime(std::size_t number) {
    return TimeStamp(std::chrono::seconds(1'700'000'000 + 3600 * number));
}

// An agent of this home that Brell turned off.
inline JournalEntry sampleSwitch(const std::filesystem::path& home, std::size_t number) {
    return testing::agentEntry(
        {sampleLabel(number), sampleJobFile(home, number).string(), true, AgentOverride::absent},
        sampleTime(number));
}

// A change that is over.
inline JournalEntry sampleEntry(std::size_t number) {
    constexpr std::size_t kinds = 7;
    JournalEntry entry =
        number % kinds == 3
            ? sampleSwitch(sampleHome, number)
            : testing::entryOf("sample.tweak_" + std::to_string(number),
                               {{{"com.apple.dock", "autohide"}, StoredValue(), PrefValue(true)},
                                {{"com.apple.dock", "autohide-delay"}, PrefValue(0.5), PrefValue(0.05)}},
                               sampleTime(number));
    entry.status = EntryStatus::restored;
    entry.restoredAt = entry.appliedAt + std::chrono::hours(5);
    if (number % kinds == 1) entry.choiceID = "small";
    if (number % kinds == 2) {
        entry.status = EntryStatus::failed;
        entry.restoredAt = std::nullopt;
        entry.failure = "macOS did not confirm the write to com.apple.dock.";
    }
    return entry;
}

// So many entries that are over, with one for each of the first agents of this home among the last of them.
inline std::vector<JournalEntry> sampleJournal(std::size_t entries, std::size_t switches = 0,
                                               const std::filesystem::path& home = sampleHome) {
    std::vector<JournalEntry> journal;
    journal.reserve(entries);
    for (std::size_t i = 0; i < entries; ++i)
        journal.push_back(i < entries - switches ? sampleEntry(i)
                                                 : sampleSwitch(home, i - (entries - switches)));
    return journal;
}

// A journal file with these, laid out as the journal itself does it.
inline void writeJournal(const std::filesystem::path& file, const std::vector<JournalEntry>& entries) {
    JsonWriter json(JsonWriter::Layout::pretty);
    json.beginObject();
    json.key("entries");
    json.beginArray();
    for (const JournalEntry& entry : entries) writeJson(json, entry);
    json.endArray();
    json.key("format");
    json.integer(1);
    json.endObject();
    replaceFile(file, json.take() + "\n", Durability::readersOnly);
}

inline void writeSampleJournal(const std::filesystem::path& file, std::size_t entries) {
    writeJournal(file, sampleJournal(entries));
}

// The entry as it was saved for the first, second or third time.
inline JournalEntry sampleStage(JournalEntry entry, std::size_t saved) {
    constexpr std::array stages{EntryStatus::capturing, EntryStatus::applied};
    if (saved >= stages.size()) return entry;
    entry.status = stages[saved];
    entry.restoredAt = std::nullopt;
    entry.failure = std::nullopt;
    return entry;
}

// History files of so many days with so many lines each, three for every change.
inline void writeSampleHistory(const std::filesystem::path& directory, std::size_t days,
                               std::size_t linesPerDay) {
    constexpr std::size_t linesPerChange = 3;
    JournalEntry entry;
    for (std::size_t day = 0; day < days; ++day) {
        std::string lines;
        for (std::size_t i = day * linesPerDay; i < (day + 1) * linesPerDay; ++i) {
            if (i % linesPerChange == 0) entry = sampleEntry(i / linesPerChange);
            lines += historyLineText(entry.appliedAt, sampleStage(entry, i % linesPerChange));
        }
        replaceFile(directory / ("day" + std::to_string(1000 + day) + ".jsonl"), lines,
                    Durability::readersOnly);
    }
}

// The job files of so many agents of the user's own.
inline void writeSampleAgents(const std::filesystem::path& home, std::size_t agents) {
    for (std::size_t i = 0; i < agents; ++i)
        replaceFile(sampleJobFile(home, i),
                    "<plist version=\"1.0\"><dict><key>Label</key><string>" + sampleLabel(i) +
                        "</string><key>Program</key><string>/Applications/Example " + std::to_string(i) +
                        ".app/Contents/MacOS/helper</string><key>RunAtLoad</key><true/></dict></plist>\n",
                    Durability::readersOnly);
}

// The database of background tasks as it prints so many agents of this home, numbered from first.
inline std::string sampleDump(std::size_t items, std::size_t first = 1,
                              const std::filesystem::path& home = sampleHome) {
    std::string text =
        "========================\n Records for UID 501 : 0011\n========================\n\n Items:\n\n";
    for (std::size_t number = first; number < first + items; ++number) {
        const std::string index = std::to_string(number);
        text += " #" + std::to_string(number - first + 1) +
                ":\n                 UUID: 6B5D2C34-0A1B-4C5D-8E9F-001122334455\n" +
                "                 Name: Helper " + index + "\n       Developer Name: Example Works " + index +
                "\n      Team Identifier: AB12CD34EF\n                 Type: legacy agent (0x10008)\n" +
                "                Flags: [ legacy ] (0x1)\n" +
                "          Disposition: [enabled, allowed, notified] (0xb)\n           Identifier: 8." +
                sampleLabel(number) + "\n                  URL: file://" +
                sampleJobFile(home, number).string() + "\n" +
                "      Executable Path: /Applications/Example.app/Contents/MacOS/helper\n" +
                "           Generation: 1\n    Parent Identifier: Example Works " + index + "\n\n";
    }
    return text;
}

}  // namespace brell
