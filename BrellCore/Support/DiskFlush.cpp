#include "BrellCore/Support/DiskFlush.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace brell {

bool flushToDisk(const UniqueFd& file) {
#ifdef F_FULLFSYNC
    // fsync on macOS stops at the drive's own cache; file systems without the full flush refuse it.
    if (::fcntl(file.get(), F_FULLFSYNC) == 0) return true;
#endif
    int result;
    do {
        result = ::fsync(file.get());
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

}  // namespace brell
