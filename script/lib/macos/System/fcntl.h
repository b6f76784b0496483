// fcntl(2): the flush that reaches the drive; and what macOS lacks.
#pragma once

#include_next <fcntl.h>

#define F_FULLFSYNC 51
#pragma GCC poison posix_fadvise posix_fallocate
