// How long others are waited for.
#pragma once

#include <chrono>

namespace brell {

// Never set back, and still while the machine sleeps, as everything is that others need time for.
// std::chrono::steady_clock goes on during the sleep of a Mac, where it reads CLOCK_MONOTONIC_RAW: after the
// lid was closed for an hour, all patience would be over before anyone could answer.
struct AwakeClock {
    using duration = std::chrono::nanoseconds;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = std::chrono::time_point<AwakeClock>;
    static constexpr bool is_steady = true;

    static time_point now() noexcept;
};

}  // namespace brell
