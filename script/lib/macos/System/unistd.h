// What macOS has in no header.
#pragma once

#include_next <unistd.h>

#pragma GCC poison fdatasync fexecve
