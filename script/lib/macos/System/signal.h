// sigaddset(3) and its neighbours: macros too, so that no :: can stand before them. And what macOS lacks.
#pragma once

#include_next <signal.h>

#define sigaddset(set, signal) (sigaddset)(set, signal)
#define sigdelset(set, signal) (sigdelset)(set, signal)
#define sigemptyset(set) (sigemptyset)(set)
#define sigfillset(set) (sigfillset)(set)
#define sigismember(set, signal) (sigismember)(set, signal)

#pragma GCC poison sigqueue sigtimedwait sigwaitinfo SIGPOLL SIGRTMAX SIGRTMIN
