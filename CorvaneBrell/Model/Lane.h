// Work beside the main thread: one job after another, each an operation of a class that knows nothing of the
// main thread's state. A job's result goes back to the main thread.
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

#include "CorvaneBrell/Model/Progress.h"
#include "CorvaneBrell/Platform/MainLoop.h"

namespace brell {

struct Dependencies;

// A job's value, or the text of the error that ended it.
template <class Value>
struct JobResult {
    std::optional<Value> value;
    std::string error;
};

// The thread of a lane. Made, used and destroyed on the main thread but where it says otherwise.
class LaneThread {
public:
    explicit LaneThread(MainLoop& loop);
    ~LaneThread();
    LaneThread(const LaneThread&) = delete;
    LaneThread& operator=(const LaneThread&) = delete;

    void enqueue(std::function<void()> job);
    void end();

    // From any thread.
    bool isEnding() const { return ending_; }
    void report(std::function<void()> news);  // on the main thread, while the lane lives

private:
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

// Made, used and destroyed on the main thread. Its end waits for the job that is running, drops those that
// have not begun, and lets no result come back any more. Work is made of a
// Dependencies& and a Progress&.
template <class Work>
class Lane {
public:
    // show is told on the main thread what is being done, and nothing once all of it is done.
    Lane(MainLoop& loop, Dependencies& dependencies, std::function<void(std::optional<Activity>)> show)
        : show_(std::move(show)),
          progress_(posted<Activity>([this](Activity activity) { show_(std::move(activity)); }),
                    [this] { return thread_.isEnding(); }),
          work_(dependencies, progress_),
          thread_(loop) {}

    // Runs this operation of the work over copies of the arguments, then done(JobResult) on the main thread.
    // what is shown meanwhile; nothing is when it is empty.
    template <class Job, class Done, class... Arguments>
        requires std::is_member_function_pointer_v<Job>
    void run(std::string what, Job job, Done done, Arguments... arguments) {
        using Value = std::invoke_result_t<Job, Work&, Arguments&...>;
        if (!isBusy() && !what.empty()) show_(Activity{what});
        ++underWay_;
        const auto finish = posted<JobResult<Value>>([this, done = std::move(done)](JobResult<Value> result) {
            --underWay_;
            done(std::move(result));
            if (!isBusy()) show_(std::nullopt);
        });
        thread_.enqueue(
            [this, what = std::move(what), job, finish, ... arguments = std::move(arguments)]() mutable {
                if (!what.empty()) progress_.begin(what);
                try {
                    finish({std::invoke(job, work_, arguments...), {}});
                } catch (const std::exception& error) {
                    finish({std::nullopt, error.what()});
                }
            });
    }

    // For a job's argument, so that it can report more than how far it is.
    template <class... Values>
    Posted<Values...> posted(std::type_identity_t<std::function<void(Values...)>> call) {
        return Posted<Values...>([this, call = std::move(call)](Values... values) {
            thread_.report([call, ... values = std::move(values)]() mutable { call(std::move(values)...); });
        });
    }

    // Jobs whose result is not back.
    bool isBusy() const { return underWay_ > 0; }
    // From now on no job begins and no result comes back.
    void end() { thread_.end(); }

private:
    const std::function<void(std::optional<Activity>)> show_;
    int underWay_ = 0;
    Progress progress_;  // the thread's
    Work work_;          // likewise
    LaneThread thread_;  // last: it uses all of the above
};

}  // namespace brell
