// Flags of Linux alone.
#pragma once

#include_next <sys/socket.h>

#pragma GCC poison MSG_NOSIGNAL SOCK_CLOEXEC SOCK_NONBLOCK
