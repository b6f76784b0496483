// Preference values in JSON: {"type": "int", "value": 36}, and {"absent": true} for nothing stored.
#pragma once

#include <simdjson.h>

#include "BrellCore/Preferences/PrefValue.h"
#include "BrellCore/Support/JsonWriter.h"

namespace brell {

// Raises JsonWriteError for what JSON can't carry: not-a-number, infinities, text that is not UTF-8.
void writeJson(JsonWriter& json, const PrefValue& value);
void writeJson(JsonWriter& json, const StoredValue& value);

// Raises simdjson_error or std::runtime_error for a missing key, a value of the wrong JSON type or a type
// word outside the five ("unknown PrefValue type float"). Nothing is defaulted. Where "absent" is true the
// rest only has to be JSON.
StoredValue readStoredValue(simdjson::ondemand::object object);

}  // namespace brell
