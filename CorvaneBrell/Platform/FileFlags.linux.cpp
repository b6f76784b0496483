#include "CorvaneBrell/Platform/FileFlags.h"

namespace brell {

bool isLocked(const struct stat&) {
    return false;
}

}  // namespace brell
