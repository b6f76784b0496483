// What macOS lacks or calls otherwise.
#pragma once

#include_next <string.h>

#pragma GCC poison explicit_bzero strerror_l
