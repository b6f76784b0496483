// Something that is done when it is asked for, but not again before a while is over: what is asked for sooner
// is done once, then.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "BrellCore/Support/AwakeClock.h"
#include "CorvaneBrell/Platform/MainLoop.h"

namespace brell {

// Main thread only. The while begins when it is made, as if it had been done then.
class Paced {
public:
    Paced(MainLoop& loop, std::chrono::milliseconds pause, std::function<void()> act);

    void ask();

private:
    void act();

    MainLoop& loop_;
    const std::chrono::milliseconds pause_;
    const std::function<void()> act_;
    AwakeClock::time_point done_;
    bool isAsked_ = false;
    const std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace brell
