#include "BrellCore/Journal/JournalJson.h"

#include <array>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "BrellCore/Preferences/PrefValueJson.h"
#include "BrellCore/Support/JsonReader.h"

namespace brell {

namespace json = simdjson::ondemand;

namespace {

// Each reads a value into a field that holds nothing yet.
void readInto(json::value& value, std::string_view, std::string& text) {
    text = value.get_string().value();
}

void readInto(json::value& value, std::string_view, bool& flag) {
    flag = value.get_bool();
}

void readInto(json::value& value, std::string_view, TimeStamp& time) {
    time = readTimeStamp(value);
}

void readInto(json::value& value, std::string_view, Uuid& id) {
    const std::string_view text = value.get_string().value();
    const auto read = Uuid::parse(text);
    if (!read) throw std::runtime_error("\"" + excerpt(text) + "\" is not an entry's identifier");
    id = *read;
}

template <class Enum>
    requires std::is_enum_v<Enum>
void readInto(json::value& value, std::string_view key, Enum& word) {
    word = readEnum<Enum>(value, key);
}

void readInto(json::value& value, std::string_view, StoredValue& stored) {
    stored = readStoredValue(value.get_object());
}

void readInto(json::value& value, std::string_view key, AgentCapture& agent);

// Null is as good as no key at all.
template <template <class> class Optional, class Value>
void readInto(json::value& value, std::string_view key, Optional<Value>& field) {
    if (!value.is_null()) readInto(value, key, field.emplace());
}

template <auto field, class Record>
void readField(json::value& value, std::string_view key, Record& record) {
    readInto(value, key, record.*field);
}

void readDomain(json::value& value, std::string_view key, JournaledWrite& write) {
    readInto(value, key, write.key.domain);
}

void readKey(json::value& value, std::string_view key, JournaledWrite& write) {
    readInto(value, key, write.key.name);
}

constexpr std::array<Member<JournaledWrite>, 4> writeMembers{
    {{{"domain"}, readDomain},
     {{"key"}, readKey},
     {{"original"}, readField<&JournaledWrite::original>},
     {{"written"}, readField<&JournaledWrite::written>}}};

void readWrites(json::value& value, std::string_view, JournalEntry& entry) {
    for (auto write : value.get_array())
        readMembers(write.get_object(), writeMembers, entry.writes.emplace_back());
}

constexpr std::array<Member<AgentCapture>, 4> agentMembers{
    {{{"label"}, readField<&AgentCapture::label>},
     {{"override"}, readField<&AgentCapture::override>},
     {{"plistPath"}, readField<&AgentCapture::plistPath>},
     {{"wasLoaded"}, readField<&AgentCapture::wasLoaded>}}};

void readInto(json::value& value, std::string_view, AgentCapture& agent) {
    readMembers(value.get_object(), agentMembers, agent);
}

constexpr std::array<Member<JournalEntry>, 12> entryMembers{
    {{{"agent", false}, readField<&JournalEntry::agent>},
     {{"appliedAt"}, readField<&JournalEntry::appliedAt>},
     {{"choiceID", false}, readField<&JournalEntry::choiceID>},
     {{"direction"}, readField<&JournalEntry::direction>},
     {{"failure", false}, readField<&JournalEntry::failure>},
     {{"id"}, readField<&JournalEntry::id>},
     {{"kind"}, readField<&JournalEntry::kind>},
     {{"macOSVersion"}, readField<&JournalEntry::macOSVersion>},
     {{"restoredAt", false}, readField<&JournalEntry::restoredAt>},
     {{"status"}, readField<&JournalEntry::status>},
     {{"tweakID"}, readField<&JournalEntry::tweakID>},
     {{"writes"}, readWrites}}};

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

void readJournalEntry(json::object object, JournalEntry& entry) {
    readMembers(object, entryMembers, entry);
}

TimeStamp readTimeStamp(json::value& value) {
    const std::string_view text = value.get_string().value();
    if (const auto time = parseIso8601(text)) return *time;
    throw std::runtime_error("\"" + excerpt(text) + "\" is not a date");
}

}  // namespace brell
