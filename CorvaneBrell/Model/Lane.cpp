#include "CorvaneBrell/Model/Lane.h"

#include "CorvaneBrell/Platform/ThreadWork.h"

namespace brell {

LaneThread::LaneThread(MainLoop& loop) : loop_(loop), thread_([this] { work(); }) {}

LaneThread::~LaneThread() {
    end();
    thread_.join();
}

void LaneThread::end() {
    alive_.reset();
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
        jobs_.clear();
    }
    changed_.notify_all();
}

void LaneThread::report(std::function<void()> news) {
    loop_.post([watched = watched_, news = std::move(news)] {
        if (watched.lock()) news();
    });
}

void LaneThread::enqueue(std::function<void()> job) {
    {
        const std::lock_guard lock(mutex_);
        jobs_.push_back(std::move(job));
    }
    changed_.notify_all();
}

void LaneThread::work() {
    for (;;) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return ending_ || !jobs_.empty(); });
        if (ending_) return;
        std::function<void()> job = std::move(jobs_.front());
        jobs_.pop_front();
        lock.unlock();
        runOnThread(job);
    }
}

}  // namespace brell
