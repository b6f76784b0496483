#include "BrellCore/Support/AwakeClock.h"

#include <time.h>

namespace brell {

namespace {

#ifdef __APPLE__
constexpr clockid_t awake = CLOCK_UPTIME_RAW;
#else
constexpr clockid_t awake = CLOCK_MONOTONIC;
#endif

}  // namespace

AwakeClock::time_point AwakeClock::now() noexcept {
    struct timespec time {};
    ::clock_gettime(awake, &time);
    return time_point(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

}  // namespace brell
