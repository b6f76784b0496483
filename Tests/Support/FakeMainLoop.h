// A main loop whose clock the test owns; other threads may post to it as to a real one.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include "CorvaneBrell/Platform/MainLoop.h"

namespace brell::testing {

// The thread that makes it is the main thread; a call from another one, and running it from inside an action,
// fail the test.
class FakeMainLoop final : public MainLoop {
public:
    using Moment = AwakeClock::time_point;

    Moment now() const override {
        checkMainThread();
        return now_;
    }
    void callAfter(std::chrono::milliseconds delay, std::function<void()> action) override {
        checkMainThread();
        timers_.emplace(now_ + delay, std::move(action));
    }
    void post(std::function<void()> action) override {
        const std::lock_guard lock(mutex_);
        posted_.push_back(std::move(action));
        arrived_.notify_one();
    }

    // Runs what was posted and what is due, and whatever that asks for, until nothing is left.
    void runUntilIdle() {
        checkMainThread();
        EXPECT_FALSE(std::exchange(running_, true))
            << "The main loop was run from inside one of its actions.";
        while (runNext()) {
        }
        running_ = false;
    }

    // The same while the clock moves on; at each action it shows the moment at which that was due.
    void advance(std::chrono::milliseconds time) {
        const Moment end = now_ + time;
        runUntilIdle();
        while (!timers_.empty() && timers_.begin()->first <= end) {
            now_ = timers_.begin()->first;
            runUntilIdle();
        }
        now_ = end;
    }

    // Runs what other threads post until the condition holds; false when it does not within the real time
    // given. The clock stands still.
    [[nodiscard]] bool waitFor(const std::function<bool()>& condition,
                               std::chrono::milliseconds limit = std::chrono::seconds(10)) {
        const auto deadline = std::chrono::steady_clock::now() + limit;
        for (;;) {
            runUntilIdle();
            if (condition()) return true;
            const auto now = std::chrono::steady_clock::now();
            if (now >= deadline) return false;
            // Now and then without a post, too: the condition may look at more than what is posted.
            const auto nextLook = std::min(deadline, now + std::chrono::milliseconds(5));
            std::unique_lock lock(mutex_);
            arrived_.wait_until(lock, nextLook, [this] { return !posted_.empty(); });
        }
    }

    // Actions that wait for their moment.
    std::size_t waiting() const { return timers_.size(); }

private:
    bool runNext() {
        std::function<void()> action;
        {
            const std::lock_guard lock(mutex_);
            if (!posted_.empty()) {
                action = std::move(posted_.front());
                posted_.pop_front();
            }
        }
        if (!action) {
            if (timers_.empty() || timers_.begin()->first > now_) return false;
            action = std::move(timers_.extract(timers_.begin()).mapped());
        }
        action();
        return true;
    }

    void checkMainThread() const {
        EXPECT_EQ(std::this_thread::get_id(), mainThread_) << "The main loop was used from another thread.";
    }

    const std::thread::id mainThread_ = std::this_thread::get_id();
    Moment now_{std::chrono::hours(1)};
    std::multimap<Moment, std::function<void()>> timers_;  // equal moments in the order of asking
    bool running_ = false;

    std::mutex mutex_;  // guards posted_
    std::condition_variable arrived_;
    std::deque<std::function<void()>> posted_;
};

}  // namespace brell::testing
