#include "CorvaneBrell/Model/Paced.h"

#include <algorithm>
#include <utility>

namespace brell {

Paced::Paced(MainLoop& loop, std::chrono::milliseconds pause, std::function<void()> act)
    : loop_(loop), pause_(pause), act_(std::move(act)), done_(loop.now()) {}

void Paced::ask() {
    if (std::exchange(isAsked_, true)) return;
    const auto passed = std::chrono::duration_cast<std::chrono::milliseconds>(loop_.now() - done_);
    loop_.callAfter(std::clamp(pause_ - passed, std::chrono::milliseconds(0), pause_),
                    [this, alive = std::weak_ptr(alive_)] {
                        if (!alive.expired()) act();
                    });
}

void Paced::act() {
    isAsked_ = false;
    done_ = loop_.now();
    act_();
}

}  // namespace brell
