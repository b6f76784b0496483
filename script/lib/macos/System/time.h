// Clocks and timers that macOS lacks.
#pragma once

#include_next <time.h>

#pragma GCC poison clock_nanosleep timer_create CLOCK_BOOTTIME CLOCK_MONOTONIC_COARSE CLOCK_REALTIME_COARSE
