#include "CorvaneBrell/Platform/ThreadWork.h"

namespace brell {

void runOnThread(const std::function<void()>& work) {
    work();
}

}  // namespace brell
