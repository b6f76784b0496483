// dirfd(3): a macro too.
#pragma once

#include_next <dirent.h>

#define dirfd(folder) (dirfd)(folder)
