// fcntl(2): the flush that reaches the drive.
#pragma once

#include_next <fcntl.h>

#define F_FULLFSYNC 51
