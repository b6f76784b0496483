// The main thread's loop, as far as code without a window needs it: time, and being called later.
#pragma once

#include <chrono>
#include <functional>

#include "BrellCore/Support/AwakeClock.h"

namespace brell {

// Calls come one at a time on the main thread, never from inside the function that asked for them. An object
// that asks sees to it that a call that comes after the end of its receiver does nothing.
class MainLoop {
public:
    virtual ~MainLoop() = default;

    // Main thread only.
    virtual AwakeClock::time_point now() const = 0;
    virtual void callAfter(std::chrono::milliseconds delay, std::function<void()> action) = 0;

    // From any thread. Actions run in the order in which they were posted.
    virtual void post(std::function<void()> action) = 0;
};

}  // namespace brell
