// The way in which work beside the main thread reports to it, and learns that it is not to go on.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>

#include "BrellCore/Support/AwakeClock.h"

namespace brell {

// A job that runs beside the main thread, for the user.
struct Activity {
    std::string what;  // "Restoring every change"
    std::size_t done = 0;
    std::size_t total = 0;  // 0: not known
    bool operator==(const Activity&) const = default;
};

// A call that is carried out on the main thread, whichever thread makes it.
template <class... Values>
class Posted {
public:
    Posted() = default;  // carries out nothing
    explicit Posted(std::function<void(Values...)> call) : call_(std::move(call)) {}
    explicit operator bool() const { return static_cast<bool>(call_); }
    void operator()(Values... values) const {
        if (call_) call_(std::move(values)...);
    }

private:
    std::function<void(Values...)> call_;
};

// Of one thread, whose work tells it how far it is.
class Progress {
public:
    Progress() = default;  // tells nobody, and never ends
    Progress(Posted<Activity> show, std::function<bool()> isEnding)
        : show_(std::move(show)), isEnding_(std::move(isEnding)) {}

    // A new job: what it does is shown, even if the job before did the same.
    void begin(const std::string& what) {
        job_ = what;
        last_ = {};
        tell(what);
    }
    // Shown when something else begins, and then every tenth of a second: as fast as a job goes it would keep
    // the main thread busy with nothing else.
    void tell(const std::string& what, std::size_t done = 0, std::size_t total = 0) {
        const auto now = AwakeClock::now();
        if (what == told_ && now - last_ < pause) return;
        told_ = what;
        last_ = now;
        show_(Activity{what, done, total});
    }
    // How far the job itself is.
    void tell(std::size_t done, std::size_t total) { tell(job_, done, total); }

    // True once the work is to end before its next step.
    bool isEnding() const { return isEnding_ && isEnding_(); }

private:
    static constexpr std::chrono::milliseconds pause{100};
    Posted<Activity> show_;
    std::function<bool()> isEnding_;
    std::string job_;
    std::string told_;
    AwakeClock::time_point last_;
};

}  // namespace brell
