// chflags(2): the field for flags in the record of stat(2).
#pragma once

#include_next <sys/stat.h>

#define st_flags st_uid  // any field that is as wide
#define UF_IMMUTABLE 0x2
#define SF_IMMUTABLE 0x20000
