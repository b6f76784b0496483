#include "CorvaneBrell/Platform/UserPreferences.h"

#include <stdexcept>

namespace brell {

void refuseRoot(std::uint32_t effectiveUid) {
    if (effectiveUid == 0)
        throw std::runtime_error(
            "Brell does not run as root, because it would change root's settings instead of yours; "
            "start it as the user whose settings it is to change.");
}

}  // namespace brell
