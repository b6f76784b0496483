// Any bytes either are refused with a reason or give a value; and the value, written in either form, reads
// back the same.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "BrellCore/Support/PropertyList.h"
#include "Fuzz/Checks.h"

namespace {

using namespace brell;

bool isSame(const PlistValue& value, const PlistValue& back, std::string_view text) {
    // A number that is none equals nothing, not even itself; its text does.
    return back == value || (value != value && writeXmlPropertyList(back) == text);
}

// Nothing when XML can't hold the value; a binary file may hold more.
std::optional<std::string> written(const PlistValue& value) {
    try {
        return writeXmlPropertyList(value);
    } catch (const PlistError&) {
        return std::nullopt;
    }
}

// True when the value has no integer beyond 64 bits, which is never written, and no more values than are soon
// written; a small file may hold many.
bool isSoonWritten(const PlistValue& value, std::size_t& left) {
    if (left == 0 || value.as<PlistBigInteger>()) return false;
    --left;
    if (const auto* array = value.as<PlistArray>())
        for (const PlistValue& element : *array)
            if (!isSoonWritten(element, left)) return false;
    if (const auto* dictionary = value.as<PlistDictionary>())
        for (const PlistEntry& entry : dictionary->entries)
            if (!isSoonWritten(entry.value, left)) return false;
    return true;
}

void checkBinary(const PlistValue& value) {
    std::size_t most = 1000;
    if (!isSoonWritten(value, most)) return;
    const std::string bytes = writeBinaryPropertyList(value);
    const PlistValue back = readPropertyList(bytes);
    fuzz::require(back == value || value != value);
    fuzz::require(writeBinaryPropertyList(back) == bytes);
}

}  // namespace

// A refusal of what was written escapes, and is a finding too.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::optional<PlistValue> value;
    try {
        value = readPropertyList({reinterpret_cast<const char*>(data), size});
    } catch (const PlistError& error) {
        fuzz::require(fuzz::isReason(error.failure().reason));
        return 0;
    }
    if (const auto text = written(*value)) fuzz::require(isSame(*value, readPropertyList(*text), *text));
    checkBinary(*value);
    return 0;
}
