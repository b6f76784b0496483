#include "CorvaneBrell/LaunchOptions.h"

namespace brell {

CommandLine readCommandLine(int, const char* const*) {
    return {};
}

}  // namespace brell
