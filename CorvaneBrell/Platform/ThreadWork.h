// A piece of work on a thread that is not the main one.
#pragma once

#include <functional>

namespace brell {

// Runs it, and lets go of what the system's frameworks have set aside meanwhile for whoever called them: on
// macOS nobody else does on such a thread before it ends.
void runOnThread(const std::function<void()>& work);

}  // namespace brell
