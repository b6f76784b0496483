#include "BrellCore/Journal/JournalJson.h"

#include <array>
#include <stdexcept>

#include "BrellCore/Preferences/PrefValueJson.h"
#include "BrellCore/Support/JsonReader.h"

namespace brell {

namespace json = simdjson::ondemand;

namespace {

// The last four are optional.
constexpr std::array<std::string_view, 12> entryKeys{"appliedAt",    "direction", "id",      "kind",
                                                     "macOSVersion", "status",    "tweakID", "writes",
                                                     "agent",        "choiceID",  "failure", "restoredAt"};
constexpr std::size_t requiredEntryKeys = 8;
constexpr std::array<std::string_view, 4> writeKeys{"domain", "key", "original", "written"};
constexpr std::array<std::string_view, 4> agentKeys{"label", "override", "plistPath", "wasLoaded"};

std::string readText(json::value value) {
    return std::string(value.get_string().value());
}

Uuid readUuid(json::value value) {
    const std::string_view text = value.get_string();
    if (const auto id = Uuid::parse(text)) return *id;
    throw std::runtime_error("\"" + excerpt(text) + "\" is not an entry's identifier");
}

// Null is as good as no key at all.
template <class Read>
auto readOptional(json::value value, Read&& read) -> std::optional<decltype(read(value))> {
    if (value.is_null()) return std::nullopt;
    return read(value);
}

AgentCapture readAgent(json::value value) {
    AgentCapture agent{};
    KnownKeys known(agentKeys, agentKeys.size());
    for (auto field : value.get_object()) {
        const std::string_view key = field.unescaped_key();
        if (!known.met(key)) checkWellFormed(field.value());
        if (key == "label") agent.label = readText(field.value());
        if (key == "override") agent.override = readEnum<AgentOverride>(field.value(), key);
        if (key == "plistPath") agent.plistPath = readText(field.value());
        if (key == "wasLoaded") agent.wasLoaded = field.value().get_bool();
    }
    known.checkAllMet();
    return agent;
}

JournaledWrite readWrite(json::object object) {
    JournaledWrite write;
    KnownKeys known(writeKeys, writeKeys.size());
    for (auto field : object) {
        const std::string_view key = field.unescaped_key();
        if (!known.met(key)) checkWellFormed(field.value());
        if (key == "domain") write.key.domain = readText(field.value());
        if (key == "key") write.key.name = readText(field.value());
        if (key == "original") write.original = readStoredValue(field.value().get_object());
        if (key == "written") write.written = readStoredValue(field.value().get_object());
    }
    known.checkAllMet();
    return write;
}

void writeWrite(JsonWriter& json, const JournaledWrite& write) {
    json.beginObject();
    json.key("domain");
    json.string(write.key.domain);
    json.key("key");
    json.string(write.key.name);
    json.key("original");
    writeJson(json, write.original);
    json.key("written");
    writeJson(json, write.written);
    json.endObject();
}

void writeAgent(JsonWriter& json, const AgentCapture& agent) {
    json.beginObject();
    json.key("label");
    json.string(agent.label);
    json.key("override");
    json.string(rawValue(agent.override));
    json.key("plistPath");
    json.string(agent.plistPath);
    json.key("wasLoaded");
    json.boolean(agent.wasLoaded);
    json.endObject();
}

void writeMember(JsonWriter& json, std::string_view key, std::string_view text) {
    json.key(key);
    json.string(text);
}

// Only a date that can be read again.
void writeMember(JsonWriter& json, std::string_view key, TimeStamp time) {
    const std::string text = iso8601(time);
    if (!parseIso8601(text)) throw JsonWriteError("a date outside the years 0 to 9999 can't be saved");
    writeMember(json, key, text);
}

}  // namespace

void writeJson(JsonWriter& json, const JournalEntry& entry) {
    json.beginObject();
    if (entry.agent) {
        json.key("agent");
        writeAgent(json, *entry.agent);
    }
    writeMember(json, "appliedAt", entry.appliedAt);
    if (entry.choiceID) writeMember(json, "choiceID", *entry.choiceID);
    writeMember(json, "direction", rawValue(entry.direction));
    if (entry.failure) writeMember(json, "failure", *entry.failure);
    writeMember(json, "id", entry.id.text());
    writeMember(json, "kind", rawValue(entry.kind));
    writeMember(json, "macOSVersion", entry.macOSVersion);
    if (entry.restoredAt) writeMember(json, "restoredAt", *entry.restoredAt);
    writeMember(json, "status", rawValue(entry.status));
    writeMember(json, "tweakID", entry.tweakID);
    json.key("writes");
    json.beginArray();
    for (const JournaledWrite& write : entry.writes) writeWrite(json, write);
    json.endArray();
    json.endObject();
}

JournalEntry readJournalEntry(json::object object) {
    JournalEntry entry{};
    KnownKeys known(entryKeys, requiredEntryKeys);
    for (auto field : object) {
        const std::string_view key = field.unescaped_key();
        if (!known.met(key)) checkWellFormed(field.value());
        if (key == "agent") entry.agent = readOptional(field.value(), readAgent);
        if (key == "appliedAt") entry.appliedAt = readTimeStamp(field.value());
        if (key == "choiceID") entry.choiceID = readOptional(field.value(), readText);
        if (key == "direction") entry.direction = readEnum<EntryDirection>(field.value(), key);
        if (key == "failure") entry.failure = readOptional(field.value(), readText);
        if (key == "id") entry.id = readUuid(field.value());
        if (key == "kind") entry.kind = readEnum<EntryKind>(field.value(), key);
        if (key == "macOSVersion") entry.macOSVersion = readText(field.value());
        if (key == "restoredAt") entry.restoredAt = readOptional(field.value(), readTimeStamp);
        if (key == "status") entry.status = readEnum<EntryStatus>(field.value(), key);
        if (key == "tweakID") entry.tweakID = readText(field.value());
        if (key == "writes")
            for (auto write : field.value().get_array())
                entry.writes.push_back(readWrite(write.get_object()));
    }
    known.checkAllMet();
    return entry;
}

TimeStamp readTimeStamp(json::value value) {
    const std::string_view text = value.get_string();
    if (const auto time = parseIso8601(text)) return *time;
    throw std::runtime_error("\"" + excerpt(text) + "\" is not a date");
}

}  // namespace brell
