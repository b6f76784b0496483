// stat(2) and chflags(2): the record's field for flags, and the other names of its times.
#pragma once

#include_next <sys/stat.h>

#define st_mtimespec st_mtim
#define st_ctimespec st_ctim
#define st_flags st_mode  // any field that is unsigned too
#define UF_IMMUTABLE 0x2
#define SF_IMMUTABLE 0x20000
