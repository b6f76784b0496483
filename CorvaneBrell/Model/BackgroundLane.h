// Work beside the main thread, one job after another, whose results come back to it.
#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <type_traits>

#include "CorvaneBrell/Platform/MainLoop.h"

namespace brell {

// What a job came to: its value, or the text of the error that ended it.
template <class Value>
struct JobResult {
    std::optional<Value> value;
    std::string error;
};

// Made, used and destroyed on the main thread. Its end waits for the job that is running, drops those that
// have not begun, and lets no result come back any more.
class BackgroundLane {
public:
    explicit BackgroundLane(MainLoop& loop);
    ~BackgroundLane();
    BackgroundLane(const BackgroundLane&) = delete;
    BackgroundLane& operator=(const BackgroundLane&) = delete;

    // Runs job on the lane's thread, then done(JobResult<Value>) on the main thread.
    template <class Job, class Done>
    void run(Job job, Done done) {
        using Value = std::invoke_result_t<Job&>;
        enqueue([this, job = std::move(job), done = std::move(done)]() mutable {
            auto result = std::make_shared<JobResult<Value>>();
            try {
                result->value = job();
            } catch (const std::exception& error) {
                result->error = error.what();
            }
            report([done = std::move(done), result]() mutable { done(std::move(*result)); });
        });
    }

    // From now on no job begins and no result comes back. A long job looks at isEnding between its steps.
    void end();
    bool isEnding() const { return ending_; }

    // From a job: runs this on the main thread, while the lane lives. For news of how far the job is.
    void report(std::function<void()> news);

private:
    void enqueue(std::function<void()> job);
    void work();

    MainLoop& loop_;
    // Looked at on the main thread only, where it also ends.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    // The jobs' copy of it, never dereferenced by them; apart from alive_, so that the two threads share no
    // object.
    const std::weak_ptr<bool> watched_ = alive_;

    std::atomic<bool> ending_ = false;
    std::mutex mutex_;  // guards the jobs
    std::deque<std::function<void()>> jobs_;
    std::condition_variable changed_;
    std::thread thread_;  // last: it uses all of the above
};

}  // namespace brell
