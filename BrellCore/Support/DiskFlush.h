// From the system's caches to stable storage.
#pragma once

#include "BrellCore/Support/UniqueFd.h"

namespace brell {

// False when the system reports that it did not get there; errno says why.
bool flushToDisk(const UniqueFd& file);

}  // namespace brell
