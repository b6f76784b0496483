#include <sys/utsname.h>

#include "CorvaneBrell/Platform/OperatingSystem.h"

namespace brell {

OperatingSystemVersion currentOSVersion() {
    utsname system{};
    return ::uname(&system) == 0 ? parseOSVersion(system.release) : OperatingSystemVersion();
}

}  // namespace brell
