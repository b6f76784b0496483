// sysctlbyname(3).
#pragma once

#include <stddef.h>

extern "C" int sysctlbyname(const char* name, void* old, size_t* oldSize, void* fresh, size_t freshSize);
