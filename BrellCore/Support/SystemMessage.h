// The system's own words for an error number.
#pragma once

#include <string>
#include <system_error>

namespace brell {

// For example "No space left on device" for ENOSPC; no final stop.
inline std::string systemMessage(int errorNumber) {
    return std::generic_category().message(errorNumber);
}

}  // namespace brell
