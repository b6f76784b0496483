#include "Tests/Support/FakeMainLoop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace brell::testing {

FakeMainLoop::Moment FakeMainLoop::now() const {
    checkMainThread();
    return now_;
}

void FakeMainLoop::callAfter(std::chrono::milliseconds delay, std::function<void()> action) {
    checkMainThread();
    timers_.emplace(now_ + delay, std::move(action));
}

void FakeMainLoop::post(std::function<void()> action) {
    const std::lock_guard lock(mutex_);
    posted_.push_back(std::move(action));
    arrived_.notify_one();
}

void FakeMainLoop::runUntilIdle() {
    checkMainThread();
    if (std::exchange(running_, true)) {
        ADD_FAILURE() << "The main loop was run from inside one of its actions.";
        return;
    }
    while (runNext()) {
    }
    running_ = false;
}

void FakeMainLoop::advance(std::chrono::milliseconds time) {
    const Moment end = now_ + time;
    runUntilIdle();
    while (!timers_.empty() && timers_.begin()->first <= end) {
        now_ = timers_.begin()->first;
        runUntilIdle();
    }
    now_ = end;
}

bool FakeMainLoop::waitFor(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
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

bool FakeMainLoop::runNext() {
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

void FakeMainLoop::checkMainThread() const {
    EXPECT_EQ(std::this_thread::get_id(), mainThread_) << "The main loop was used from another thread.";
}

}  // namespace brell::testing
