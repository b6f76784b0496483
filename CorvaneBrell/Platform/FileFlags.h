// Marks that macOS keeps at a file beside its permissions.
#pragma once

#include <sys/stat.h>

namespace brell {

// True when the file is locked, as by the box "Locked" in Finder. Always false off macOS.
bool isLocked(const struct stat& status);

}  // namespace brell
