#include "CorvaneBrell/Platform/FileFlags.h"

namespace brell {

// By the owner or by the system; see chflags(2).
bool isLocked(const struct stat& status) {
    return (status.st_flags & (UF_IMMUTABLE | SF_IMMUTABLE)) != 0;
}

}  // namespace brell
