#include "CorvaneBrell/Platform/ApplicationNames.h"

namespace brell {

std::optional<std::string> applicationName(const std::string&) {
    return std::nullopt;
}

}  // namespace brell
