// What macOS's threads lack.
#pragma once

#include_next <pthread.h>

#pragma GCC poison pthread_barrier_init pthread_condattr_setclock pthread_mutex_timedlock pthread_spin_init
