// makedev(3), and howmany of <sys/param.h>: macros that come with every header of the system.
#pragma once

#include_next <sys/types.h>

#define major(device) static_cast<int>((device) >> 24 & 0xff)
#define minor(device) static_cast<int>((device)&0xffffff)
#define makedev(major, minor) static_cast<dev_t>((major) << 24 | (minor))
#define howmany(count, size) (((count) + (size)-1) / (size))
