#include "CorvaneBrell/Platform/ThreadWork.h"

#import <AppKit/AppKit.h>

namespace brell {

void runOnThread(const std::function<void()>& work) {
    @autoreleasepool {
        work();
    }
}

}  // namespace brell
