// A main loop whose clock the test owns; other threads may post to it as to a real one.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <thread>

#include "CorvaneBrell/Platform/MainLoop.h"

namespace brell::testing {

// The thread that makes it is the main thread; a call from another one, and running it from inside an action,
// fail the test.
class FakeMainLoop final : public MainLoop {
public:
    using Moment = std::chrono::steady_clock::time_point;

    Moment now() const override;
    void callAfter(std::chrono::milliseconds delay, std::function<void()> action) override;
    void post(std::function<void()> action) override;

    // Runs what was posted and what is due, and whatever that asks for, until nothing is left.
    void runUntilIdle();
    // The same while the clock moves on; at each action it shows the moment at which that was due.
    void advance(std::chrono::milliseconds time);
    // Runs what other threads post until the condition holds; false when it does not within the real time
    // given. The clock stands still.
    [[nodiscard]] bool waitFor(const std::function<bool()>& condition,
                               std::chrono::milliseconds limit = std::chrono::seconds(10));

    // Actions that wait for their moment.
    std::size_t waiting() const { return timers_.size(); }

private:
    bool runNext();
    void checkMainThread() const;

    const std::thread::id mainThread_ = std::this_thread::get_id();
    Moment now_{std::chrono::hours(1)};
    std::multimap<Moment, std::function<void()>> timers_;  // equal moments in the order of asking
    bool running_ = false;

    std::mutex mutex_;  // guards posted_
    std::condition_variable arrived_;
    std::deque<std::function<void()>> posted_;
};

}  // namespace brell::testing
