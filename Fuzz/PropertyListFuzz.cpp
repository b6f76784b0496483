// Any bytes either are refused or give a value; and a value that can be written reads back the same.
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
    return 0;
}
