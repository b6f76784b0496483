// Journal entries as JSON objects, the same in the journal file and in history lines.
#pragma once

#include <simdjson.h>

#include "BrellCore/Journal/JournalEntry.h"
#include "BrellCore/Support/JsonReader.h"
#include "BrellCore/Support/JsonWriter.h"
#include "BrellCore/Support/Text.h"

namespace brell {

// Raises JsonWriteError for a value or text that JSON can't carry.
void writeJson(JsonWriter& json, const JournalEntry& entry);

// Reads into a fresh entry, in its place in a list: moving so large a record once more is dear. Raises
// simdjson_error or std::runtime_error for a missing key, an unknown word, a malformed identifier or date, or
// a value of the wrong JSON type. Keys may come in any order; unknown ones are passed over.
void readJournalEntry(simdjson::ondemand::object object, JournalEntry& entry);

// A date as a JSON text; std::runtime_error names the text that is none.
TimeStamp readTimeStamp(simdjson::ondemand::value& value);

// The enumerator with this text; std::runtime_error names the word that is none.
template <class Enum>
Enum readEnum(simdjson::ondemand::value& value, std::string_view key) {
    const std::string_view text = value.get_string().value();
    if (const auto known = fromRawValue<Enum>(text)) return *known;
    throw std::runtime_error("unknown " + std::string(key) + " \"" + excerpt(text) + "\"");
}

}  // namespace brell
