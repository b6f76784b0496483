// posix_spawnattr_setflags(3); and what macOS lacks.
#pragma once

#include_next <spawn.h>

#define POSIX_SPAWN_CLOEXEC_DEFAULT 0x4000
#pragma GCC poison posix_spawn_file_actions_addclosefrom_np posix_spawn_file_actions_addfchdir_np
