// clock_gettime(3): the clock that stands still during sleep; and the clocks and timers that macOS lacks.
#pragma once

#include_next <time.h>

#define CLOCK_UPTIME_RAW 8
#pragma GCC poison clock_nanosleep timer_create CLOCK_BOOTTIME CLOCK_MONOTONIC_COARSE CLOCK_REALTIME_COARSE
